#include "tool.h"
#include "words.h"

#include "ZoPrimitives/XStream.h"
#include "ZoPrimitives/ZoAssert.h"
#include "ZoPrimitives/ZoExplain.h"
#include "ZoPrimitives/ZoUtf8.h"

#include <new>
#include <system_error>

namespace ZoTool {

using namespace ZoPrimitives;

namespace {

std::string ExplainStream(const XStream& error) {
    switch (error.Kind()) {
    case TStreamFailure::NotFound:
        return Words("there is no such file; look at its name and its folder");
    case TStreamFailure::Denied:
        return Words("you may not use it; look at its rights, and whether it is a folder");
    case TStreamFailure::InUse:
        return Words("another program has it open; close it there");
    case TStreamFailure::DiskFull:
        return Words("the disk is full; make room on it");
    case TStreamFailure::Truncated:
        return Words("it ends too soon; \"zo verify\" tells where, \"zo salvage\" saves the rest");
    case TStreamFailure::Damaged:
        return Words("it is damaged; \"zo verify\" tells where, \"zo salvage\" saves the rest");
    case TStreamFailure::WrongFile:
        return Words("it is no object file; look whether it is the file that you mean");
    default:
        return Words("it cannot be used ({}: {}); look whether its disk is in order",
                     ZoToUtf8(error.Location()), ZoToUtf8(error.Message()));
    }
}

const char* Escape(Style style) {
    switch (style) {
    case Style::Plain:
        return "";
    case Style::Heading:
        return "\033[1m";
    case Style::Name:
        return "\033[36m";
    case Style::Number:
        return "\033[35m";
    case Style::Good:
        return "\033[32m";
    case Style::Note:
        return "\033[33m";
    case Style::Bad:
        return "\033[1;31m";
    case Style::Faint:
        return "\033[2m";
    }
    return "";
}

} // namespace

std::string Explain(const std::exception_ptr& error) {
    try {
        std::rethrow_exception(error);
    } catch (const Trouble& trouble) {
        return trouble.what();
    } catch (const XInvalidLanguage&) {
        return ZoToUtf8(ZoExplain());
    } catch (const XStream& stream) {
        return ExplainStream(stream);
    } catch (const XZoAssert& assertion) {
        return Words("an error of this program: {}", ZoToUtf8(assertion.Message()));
    } catch (const std::bad_alloc&) {
        return Words("there is not enough memory; close other programs");
    } catch (const std::exception& other) {
        return other.what();
    }
}

void Output::Write(std::string_view text) {
    gathered += text;
    if (gathered.size() >= MUCH) Flush();
}

void Output::Flush() {
    if (stream == nullptr) return;
    const bool whole = std::fwrite(gathered.data(), 1, gathered.size(), stream) == gathered.size();
    gathered.clear();
    if (!whole || std::fflush(stream) != 0) {
        throw Trouble(Words(
            "what was asked for cannot be written; look whether the disk is full or the reader has gone"));
    }
}

std::string Output::Paint(Style style, std::string_view text) const {
    if (!colour || style == Style::Plain || text.empty()) return std::string(text);
    return fmt::format("{}{}\033[0m", Escape(style), text);
}

void Tool::Tell(Style style, std::string_view file, std::string_view message) {
    out.Flush();
    err.Print("{} {}{}{}\n", err.Paint(style, "zo:"), file, file.empty() ? "" : ": ", message);
    err.Flush();
}

Exit Tool::Try(std::string_view file, const std::function<Exit()>& body) {
    try {
        return body();
    } catch (...) {
        Fail(file, Explain(std::current_exception()));
        return Exit::Trouble;
    }
}

Progress::Progress(Tool& tool, std::string what, unsigned long long all)
    : tool(tool), what(std::move(what)), all(all), shows(tool.showsProgress) {}

Progress::~Progress() {
    if (!shows || next == 0) return;
    try {
        tool.err.Write("\r\033[K");
        tool.err.Flush();
    } catch (const Trouble&) {
    }
}

void Progress::Draw(unsigned long long done) {
    if (all == 0) {
        tool.err.Print("\r\033[K{} {}", what, done);
        next = done + 10'000;
    } else {
        tool.err.Print("\r\033[K{} {} %", what, done * 100 / all);
        next = done + all / 100 + 1;
    }
    tool.err.Flush();
}

} // namespace ZoTool
