#pragma once

#include "ZoPrimitives/ZoStreamable.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace ZoPrimitives {

/// The members (`ftChildValue`) of objects already read whose own records are still to come; those are read
/// in place. What an object holds follows it under rising uids, so the next member is the top of a stack.
/// Members that are claimed in another order are left to `MemberObjects`.
class AwaitedMembers {
public:
    struct Member {
        int uid;
        ZoStreamableBase* object; // null: none
        ZoStreamableBase* owner;  // the outermost one
    };

    /// Begins the members of the object of the current record. `outermost` is that object or, for a member,
    /// its outermost owner.
    void Begin(int uid, ZoStreamableBase* outermost) {
        current = uid;
        owner = outermost;
        begun = members.size();
    }
    void Add(int uid, ZoStreamableBase* member) {
        if (uid == 0) return;
        const int before = members.size() > begun ? members.back().uid : current;
        const bool follows = uid > before && (begun == 0 || uid < members[begun - 1].uid);
        if (member == nullptr || !follows) return LeaveSome();
        members.push_back({uid, member, owner});
    }
    void End() { std::reverse(members.begin() + static_cast<std::ptrdiff_t>(begun), members.end()); }

    /// Returns the member whose record has that uid, and awaits it no longer.
    Member Take(int uid) {
        while (!members.empty() && members.back().uid < uid) {
            members.pop_back();
            LeaveSome();
        }
        if (members.empty() || members.back().uid != uid) return {};
        const Member taken = members.back();
        members.pop_back();
        return taken;
    }

    /// Notes that some members are not read in place.
    void LeaveSome() { left = true; }
    bool LeftSome() const { return left || !members.empty(); }

private:
    std::vector<Member> members; // uids fall
    std::size_t begun = 0;
    int current = 0;
    ZoStreamableBase* owner = nullptr;
    bool left = false;
};

} // namespace ZoPrimitives
