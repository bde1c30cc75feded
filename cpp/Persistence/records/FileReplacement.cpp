#include "Persistence/records/FileReplacement.h"

#include "Persistence/records/ErrorText.h"
#include "Persistence/records/FileAccess.h"
#include "ZoPrimitives/FileBinInStream.h"
#include "ZoPrimitives/XStream.h"

#include <array>
#include <cstddef>

namespace ZoPrimitives {

namespace {

const char* Name(const TZoPath& path) { return path.Utf8().c_str(); }

void Copy(const TZoPath& from, const TZoPath& to) {
    if (!Platform::Current().CopyWholeFile(Name(from), Name(to)))
        ThrowUnwritten(Platform::LastError(), FINALIZE, to);
}

/// Reads a file block by block, also while others have it open.
class Blocks {
public:
    static constexpr std::size_t SIZE = 16 * 1024;

    explicit Blocks(const TZoPath& fileName)
        : name(fileName),
          file(Platform::Current().OpenFile(Name(name), Platform::Access::Read, Platform::Share::ReadWrite,
                                            Platform::Creation::OpenExisting)) {
        if (file == nullptr && FileIsThere(name, FINALIZE))
            ThrowUnwritten(Platform::LastError(), FINALIZE, name);
    }
    Blocks(const Blocks&) = delete;
    Blocks& operator=(const Blocks&) = delete;
    ~Blocks() {
        if (file != nullptr) Platform::Current().CloseFile(file);
    }

    /// Empty at the end, and for a file that does not exist.
    void Next() {
        count = 0;
        if (file != nullptr && !Platform::Current().ReadFile(file, bytes.data(), SIZE, count))
            ThrowUnwritten(Platform::LastError(), FINALIZE, name);
    }
    std::size_t Count() const { return count; }
    bool Has(std::size_t place, char byte) const { return place < count && bytes[place] == byte; }
    char operator[](std::size_t place) const { return bytes[place]; }

private:
    const TZoPath& name;
    Platform::FileHandle file;
    std::array<char, SIZE> bytes;
    std::size_t count = 0;
};

/// How a file compares, byte by byte, with two others.
struct Comparison {
    bool first = true;   // it equals the first one
    bool second = true;  // it equals the second one
    bool mixture = true; // each byte is 0 or that of one of them at the same place
};

Comparison Compare(const TZoPath& name, const TZoPath& firstName, const TZoPath& secondName) {
    Blocks file(name), first(firstName), second(secondName);
    Comparison result;
    do {
        for (Blocks* blocks : {&file, &first, &second}) blocks->Next();
        result.first = result.first && first.Count() == file.Count();
        result.second = result.second && second.Count() == file.Count();
        for (std::size_t i = 0; i < file.Count(); ++i) {
            const char byte = file[i];
            const bool inFirst = first.Has(i, byte), inSecond = second.Has(i, byte);
            result.first = result.first && inFirst;
            result.second = result.second && inSecond;
            result.mixture = result.mixture && (inFirst || inSecond || byte == '\0');
        }
    } while (file.Count() != 0);
    return result;
}

/// Whether the file holds records of which some do not verify.
bool RecordsAreDamaged(const TZoPath& name) {
    const Platform::FileHandle file = Platform::Current().OpenFile(
        Name(name), Platform::Access::Read, Platform::Share::ReadWrite, Platform::Creation::OpenExisting);
    if (file == nullptr) ThrowUnwritten(Platform::LastError(), FINALIZE, name);
    TFileBinInStream in(file, true);
    try {
        in.Initialize();
    } catch (const XStream&) {
        return false; // it is another program's file
    }
    try {
        int uid = 0, classId = 0;
        while (in.LoadRecord(&uid, &classId)) continue;
    } catch (const XReadStream&) {
        return true;
    }
    return in.GetSkipped() != 0;
}

} // namespace

FileReplacement::FileReplacement(const TZoPath& name)
    : target(name.With("")), backup(name.With(BACKUP_SUFFIX)), fresh(name.With(FRESH_SUFFIX)) {}

void FileReplacement::CheckNames(bool withBackup) const {
    FileIsThere(fresh, "TFileBinOutStream::Initialize");
    if (withBackup) FileIsThere(backup, "TFileBinOutStream::Initialize");
}

void FileReplacement::MakeBackup() const {
    if (!FileIsThere(target, FINALIZE)) return;
    if (TargetIsTorn()) Copy(fresh, target);
    // A backup that cannot be deleted may still be overwritten.
    if (FileIsThere(backup, FINALIZE)) Platform::Current().DeleteWholeFile(Name(backup));
    Copy(target, backup);
}

// A replacement that was stopped leaves bytes of the new version and, behind them or between, bytes of the
// version before, which the backup holds if there is one. A target that others have written since is whole,
// and worth keeping.
bool FileReplacement::TargetIsTorn() const {
    if (!FileIsThere(fresh, FINALIZE)) return false;
    const Comparison found = Compare(target, fresh, backup);
    if (found.first || found.second) return false;
    return found.mixture || RecordsAreDamaged(target);
}

void FileReplacement::Announce(const TZoPath& written) const {
    if (Platform::Current().MoveWholeFile(Name(written), Name(fresh))) return;
    const unsigned long error = Platform::LastError();
    if (CauseOf(error).kind != TStreamFailure::InUse) ThrowUnwritten(error, FINALIZE, fresh);
    // Who reads the file keeps it from being renamed, not from being copied.
    Copy(written, fresh);
    Platform::Current().DeleteWholeFile(Name(written));
}

void FileReplacement::Perform() const { Copy(fresh, target); }

void FileReplacement::Conclude() const {
    if (Platform::Current().FileExists(Name(fresh), nullptr))
        Platform::Current().DeleteWholeFile(Name(fresh));
}

} // namespace ZoPrimitives
