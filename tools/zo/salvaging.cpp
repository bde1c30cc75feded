#include "salvaging.h"
#include "text.h"
#include "tool.h"
#include "words.h"

#include <fmt/format.h>

#include <algorithm>
#include <climits>
#include <cstring>

namespace ZoTool {

using namespace ZoPrimitives;

namespace {

/// The most records that may be found to be misled by a damaged head; if more are, the file is just like
/// that.
std::size_t FewOf(std::size_t count) { return 8 + count / 100; }

} // namespace

std::string Salvage::NameOf(int classId) const {
    const TZoClass* named = schema == nullptr ? nullptr : schema->FindClass(classId);
    return named == nullptr ? std::string() : ClassName(*named);
}

void Salvage::Lose(Fault loss) {
    ++losses;
    tell(loss);
}

void Salvage::Lose(Found& lost, FaultKind kind, std::string text) {
    lost.Set(Lost);
    Lose({kind, std::move(text), lost.offset, lost.number, lost.uid, NameOf(lost.classId)});
}

// What there is

void Salvage::TakeHeader(TZoFrameReader& frames) {
    const bool isRight = frames.GetHeaderState() == TZoHeaderState::Right;
    TZoFrameReader others(good == nullptr ? source : *good);
    const TBinHeader& header = (isRight ? frames : others).GetHeader();
    if (!isRight) {
        const bool isOthers = good != nullptr && others.GetHeaderState() == TZoHeaderState::Right;
        Lose({FaultKind::Header,
              isOthers ? Words("the header is damaged; version and release are those of the good file")
                       : Words("the header is damaged; version and release become 0")});
        if (!isOthers) return;
    }
    version = header.version;
    release = header.release;
}

bool Salvage::TakeSchema(const TZoFrame& frame, const unsigned char* payload, unsigned size) {
    if (schema == nullptr) schema = TZoRecordReader::ReadSchema(payload, size);
    if (schema == nullptr) return false;
    schemaPayload.assign(payload, payload + size);
    schemaOffset = frame.offset;
    return true;
}

void Salvage::BorrowSchema() {
    const TZoRecordReader lender(*good);
    TZoFrameReader frames(*good);
    TZoFrame frame;
    frames.ReadAt(lender.GetSchemaFrame().offset, frame);
    schema = lender.ShareSchema();
    schemaPayload.assign(frames.GetPayload(), frames.GetPayload() + frames.GetPayloadSize());
}

void Salvage::TakeFrames() {
    TZoFrameReader frames(source);
    TakeHeader(frames);
    TZoFrame frame;
    const auto loseGap = [&] {
        if (frame.gap != 0)
            Lose({FaultKind::Garbage, Words("{} bytes belong to no record", frame.gap),
                  frame.offset - frame.gap});
    };
    while (frames.Next(frame)) {
        loseGap();
        const unsigned char* payload = frames.GetPayload();
        if (payload == nullptr) {
            Lose(FrameFault(frame, false, NameOf(frame.classId)));
            continue;
        }
        if (frame.state != TZoFrameState::Whole)
            tell(FrameFault(frame, true, NameOf(frame.classId))); // mended
        isScrambled = isScrambled || frame.key != 0;
        const bool isSchema = frame.classId == 0 && frame.uid == 0;
        if (isSchema && found.empty() && schemaOffset == 0) {
            if (good != nullptr) {
                schemaOffset = frame.offset;
                continue;
            }
            if (TakeSchema(frame, payload, frames.GetPayloadSize())) continue;
        }
        found.push_back({frame.offset, frame.number, frame.uid, frame.classId, 0});
    }
    loseGap();
    isAsWritten = frames.GetDigestState() == TZoDigestState::Right;
    if (frames.GetDigestState() == TZoDigestState::Wrong)
        Lose({FaultKind::Digest,
              Words("the digest is wrong: a record may be missing, or a head or the header changed"), 36});
}

/// A further schema is that of a file inside a payload whose record is lost: those of its records that were
/// found do not belong here. They end where uids stop rising, or go on after the last one before.
void Salvage::LoseInnerFile(std::size_t first) {
    int before = 0;
    for (std::size_t i = 0; i < first; ++i) {
        if (!found[i].Has(Lost)) before = found[i].uid;
    }
    int latest = 0;
    std::size_t count = 0;
    for (std::size_t i = first + 1; i < found.size(); ++i) {
        const int uid = found[i].uid;
        if (uid <= latest || (uid != latest + 1 && uid > before)) break;
        latest = uid;
        found[i].Set(Lost);
        ++count;
    }
    Lose(found[first], FaultKind::Schema,
         Words("a file inside a payload whose record is lost, with {} records", count));
}

void Salvage::LoseInnerFiles() {
    for (std::size_t i = 0; i < found.size(); ++i) {
        if (!found[i].Has(Lost) && found[i].uid == 0 && found[i].classId == 0) LoseInnerFile(i);
    }
}

/// Uids rise, mostly by one: finds those whose neighbours tell that they are right, and those between.
void Salvage::PutInOrder() {
    std::vector<std::uint32_t> rest;
    for (std::uint32_t i = 0; i < found.size(); ++i) {
        if (!found[i].Has(Lost) && found[i].uid <= 0)
            Lose(found[i], FaultKind::Uid, Words("no object can have the uid {}", found[i].uid));
        if (!found[i].Has(Lost)) rest.push_back(i);
    }
    for (std::size_t i = 1; i < rest.size(); ++i) {
        Found &before = found[rest[i - 1]], &behind = found[rest[i]];
        if (before.uid == behind.uid - 1) {
            before.Set(BesideNext);
            behind.Set(BesideLast);
        }
    }
    int anchor = 0;
    for (const std::uint32_t i : rest) {
        if (found[i].uid > anchor) found[i].Set(AboveLast);
        if (found[i].IsBeside()) anchor = found[i].uid;
    }
    anchor = INT_MAX;
    for (std::size_t i = rest.size(); i-- > 0;) {
        Found& one = found[rest[i]];
        if (one.uid < anchor || anchor == INT_MAX) one.Set(BelowNext);
        if (one.IsBeside()) anchor = one.uid;
    }
}

/// Sorts those that are not lost by uid; of one uid, in file order.
void Salvage::Index() {
    byUid.clear();
    for (std::uint32_t i = 0; i < found.size(); ++i) {
        if (!found[i].Has(Lost)) byUid.push_back(i);
    }
    const auto precedes = [&](std::uint32_t a, std::uint32_t b) {
        return std::pair(found[a].uid, a) < std::pair(found[b].uid, b);
    };
    if (!std::is_sorted(byUid.begin(), byUid.end(), precedes))
        std::sort(byUid.begin(), byUid.end(), precedes);
}

/// The first one of that uid or a higher one.
std::vector<std::uint32_t>::const_iterator Salvage::FirstOf(int uid) const {
    return std::lower_bound(byUid.begin(), byUid.end(), uid,
                            [&](std::uint32_t i, int wanted) { return found[i].uid < wanted; });
}

const Salvage::Found* Salvage::Kept(int uid) const {
    const auto place = FirstOf(uid);
    return place != byUid.end() && found[*place].uid == uid ? &found[*place] : nullptr;
}

/// Why a field cannot refer to that uid; empty if it can.
std::string Salvage::WhyNull(const TZoClassField& field, int uid) const {
    const Found* const target = Kept(uid);
    if (target == nullptr) return Words("it refers to uid {}, which is lost", uid);
    const TZoClass* const wanted = WantedClass(field);
    const TZoClass* const itsClass = schema->FindClass(target->classId);
    if (wanted == nullptr || itsClass == nullptr || itsClass->IsInherited(wanted)) return "";
    return Words("it wants a '{}' and refers to uid {}, which is a '{}'", ClassName(*wanted), uid,
                 NameOf(target->classId));
}

// What can be believed

/// Calls `action(found, record)` with those that are not lost.
template <class Action>
void Salvage::ForEachRecord(const Action& action) {
    TZoFrameReader frames(source);
    TZoFrame frame;
    TZoRecord record;
    std::size_t next = 0;
    while (next != found.size() && frames.Next(frame)) {
        if (frame.offset != found[next].offset || frames.GetPayload() == nullptr) continue;
        Found& at = found[next++];
        if (!at.Has(Lost) && records->Read(frame, frames.GetPayload(), frames.GetPayloadSize(), record))
            action(at, record);
    }
}

/// Calls `action(value, item, half, uid)` with what the object refers to, as far as that can be known.
template <class Action>
void Salvage::ForEachReference(const TZoRecord& record, const Action& action) const {
    if (record.GetState() != TZoRecordState::Whole) return;
    for (int i = 1; i <= record.NValues(); ++i) {
        const TZoValue value = record.Value(i);
        const TZoClassField& field = value.GetField();
        if (!field.IsPointerKind() || undecided.count({record.GetClass(), &field}) != 0) continue;
        const int halves = value.GetKind() == ftChildPointerMap ? 2 : 1;
        for (int half = 1; half <= halves; ++half) {
            for (int item = 1, count = value.NItems(half); item <= count; ++item) {
                if (const int uid = value.Uid(item, half); uid != 0)
                    action(value, uid, value.UidBytes(item, half));
            }
        }
    }
}

void Salvage::CheckRecords() {
    ForEachRecord([&](Found& at, const TZoRecord& record) {
        switch (record.GetState()) {
        case TZoRecordState::UnknownClass:
            return Lose(at, FaultKind::Class, Words("the schema has no class {}", at.classId));
        case TZoRecordState::NotConsumed:
        case TZoRecordState::PastEnd:
            return Lose(at, FaultKind::Payload, Words("its payload is not one of its class"));
        case TZoRecordState::Whole:
        case TZoRecordState::UnknownKind: // it cannot be checked
            break;
        }
        if (at.uid <= 0) return Lose(at, FaultKind::Uid, Words("no object can have the uid {}", at.uid));
        CheckReferences(record);
    });
}

void Salvage::CheckReferences(const TZoRecord& record) {
    ForEachReference(record, [&](const TZoValue& value, int uid, const unsigned char*) {
        const TZoClass* wanted = WantedClass(value.GetField());
        for (auto place = FirstOf(uid); place != byUid.end() && found[*place].uid == uid; ++place) {
            Found& target = found[*place];
            const TZoClass* itsClass = schema->FindClass(target.classId);
            target.Set(Referred);
            if (wanted == nullptr || (itsClass != nullptr && itsClass->IsInherited(wanted)))
                target.Set(Fitting);
        }
    });
}

/// Of several objects with one uid, keeps the one whose neighbours tell that it is right, then the one that
/// references want, then the first.
void Salvage::ChooseAmongSameUids() {
    for (std::size_t i = 0; i < byUid.size();) {
        std::size_t behind = i;
        Found* best = nullptr;
        const auto rank = [](const Found& one) {
            const int beside = (one.Has(BesideLast) ? 1 : 0) + (one.Has(BesideNext) ? 1 : 0);
            return 4 * beside + (one.IsInOrder() ? 2 : 0) + (one.Has(Fitting) ? 1 : 0);
        };
        for (; behind < byUid.size() && found[byUid[behind]].uid == found[byUid[i]].uid; ++behind) {
            Found& one = found[byUid[behind]];
            if (!one.Has(Lost) && (best == nullptr || rank(one) > rank(*best))) best = &one;
        }
        for (; i != behind; ++i) {
            Found& one = found[byUid[i]];
            if (&one != best && !one.Has(Lost))
                Lose(one, FaultKind::Uid, Words("record {} has its uid, too, and is kept", best->number));
        }
    }
}

/// Checksums do not cover heads: a record that stands out of its order and to which nothing refers, or which
/// nothing wants that refers to it, has another's uid or class.
void Salvage::LoseStrangers() {
    const auto isMoved = [&](const Found& one) {
        return !one.IsBeside() && !one.IsInOrder() && !one.Has(Referred);
    };
    const auto isUnwanted = [&](const Found& one) { return one.Has(Referred) && !one.Has(Fitting); };
    const auto isThere = [](const auto& is) {
        return [&is](const Found& one) { return !one.Has(Lost) && is(one); };
    };
    const auto few = static_cast<std::ptrdiff_t>(FewOf(found.size()));
    const bool losesMoved = std::count_if(found.begin(), found.end(), isThere(isMoved)) <= few;
    const bool losesUnwanted = std::count_if(found.begin(), found.end(), isThere(isUnwanted)) <= few;
    for (Found& one : found) {
        if (one.Has(Lost)) continue;
        if (losesMoved && isMoved(one))
            Lose(one, FaultKind::Uid,
                 Words("its uid is not its own: it stands elsewhere, and nothing refers to it"));
        else if (losesUnwanted && isUnwanted(one))
            Lose(one, FaultKind::WrongClass,
                 Words("its class is not its own: all that refers to it wants another"));
    }
}

std::size_t Salvage::Choose() {
    if (good != nullptr) BorrowSchema();
    TakeFrames();
    if (schema == nullptr) {
        throw Trouble(Words(
            "its schema is lost, without which its records tell nothing; --schema-from takes it from another "
            "file of the same version of the application"));
    }
    records = std::make_unique<TZoRecordReader>(source, schema);
    for (const TZoRecordReader::Undecided& one : records->GetUndecided())
        undecided.emplace(one.recordClass, one.field);
    LoseInnerFiles();
    PutInOrder();
    Index();
    CheckRecords();
    ChooseAmongSameUids();
    if (!isAsWritten) LoseStrangers();
    Index();
    return byUid.size();
}

// What is written

unsigned long long Salvage::Write(TBinOutStream& target) {
    ZoWriteRecord(target, 0, 0, schemaPayload.data(), static_cast<unsigned>(schemaPayload.size()));
    std::vector<unsigned char> payload;
    ForEachRecord([&](const Found& at, const TZoRecord& record) {
        payload.assign(record.GetPayload(), record.GetPayload() + record.GetSize());
        ForEachReference(record, [&](const TZoValue& value, int uid, const unsigned char* place) {
            const std::string why = WhyNull(value.GetField(), uid);
            if (why.empty()) return;
            std::memset(payload.data() + (place - record.GetPayload()), 0, 4);
            Lose({FaultKind::Dangling,
                  Words("its field '{}' becomes null: {}", OnOneLine(Utf8(value.GetField().GetFieldName())),
                        why),
                  at.offset, at.number, at.uid, NameOf(at.classId)});
        });
        ZoWriteRecord(target, at.uid, at.classId, payload.data(), static_cast<unsigned>(payload.size()));
    });
    return byUid.size();
}

} // namespace ZoTool
