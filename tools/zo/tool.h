#pragma once

#include <fmt/format.h>

#include <cstdio>
#include <exception>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace ZoTool {

/// How the program ends.
enum class Exit : int {
    Good = 0,
    Negative = 1, ///< a negative result: differences, findings
    Trouble = 2   ///< the command could not do what it was asked
};

/// The worse of two ends.
inline Exit Worse(Exit a, Exit b) { return a < b ? b : a; }

/// The command cannot go on: names the place, what is wrong and the remedy, in UTF-8, without the file's
/// name, which is put before it.
class Trouble : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A sentence about an exception: the tool's own, the library's or another.
std::string Explain(const std::exception_ptr& error);

/// What a piece of text is; on a terminal each has its look.
enum class Style { Plain, Heading, Name, Number, Good, Note, Bad, Faint };

/// One of the standard streams, or a text in memory. Gathers what it is given; all is UTF-8.
class Output {
public:
    /// Null: what is written is kept, and `Text` has it.
    explicit Output(std::FILE* stream = nullptr) : stream(stream) {}
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    void Write(std::string_view text);
    template <class... Values>
    void Print(fmt::format_string<Values...> format, Values&&... values) {
        fmt::format_to(std::back_inserter(gathered), format, std::forward<Values>(values)...);
        if (gathered.size() >= MUCH) Flush();
    }
    /// Writes what was gathered; throws `Trouble` if that fails.
    void Flush();
    const std::string& Text() const { return gathered; }

    void SetColour(bool colours) { colour = colours; }
    bool HasColour() const { return colour; }
    std::string Paint(Style style, std::string_view text) const;

private:
    static constexpr std::size_t MUCH = 1 << 16;

    std::FILE* stream;
    std::string gathered;
    bool colour = false;
};

/// What all commands share: where data and messages go, and what is to be run.
class Tool {
public:
    /// Null streams: both are kept in memory.
    Tool(std::FILE* data, std::FILE* messages) : out(data), err(messages) {}

    /// A message for the user, on a line of its own behind the program's name. `file` may be empty.
    void Tell(Style style, std::string_view file, std::string_view message);
    void Warn(std::string_view file, std::string_view message) { Tell(Style::Note, file, message); }
    void Fail(std::string_view file, std::string_view message) { Tell(Style::Bad, file, message); }

    /// Runs `body` and tells what it throws: `Exit::Trouble` then. `file`: its name, before the message.
    Exit Try(std::string_view file, const std::function<Exit()>& body);

    Output out; ///< data
    Output err; ///< everything else
    bool showsProgress = false;
    std::function<Exit()> command; ///< set by the subcommand that was chosen
};

/// How far a command is, on a line of the terminal that is overwritten and goes in the end; nothing
/// elsewhere.
class Progress {
public:
    /// `all`: of what `Show` is told; 0: not known.
    Progress(Tool& tool, std::string what, unsigned long long all);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void Show(unsigned long long done) {
        if (shows && done >= next) Draw(done);
    }

private:
    void Draw(unsigned long long done);

    Tool& tool;
    std::string what;
    unsigned long long all;
    unsigned long long next = 0;
    bool shows;
};

} // namespace ZoTool
