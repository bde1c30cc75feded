#include "ZoPrimitives/ZoPrimitives.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <functional>
#include <string>

// The mistakes of a first day with the library: what was done, and what was said.
namespace mistakes {

using namespace ZoPrimitives;

class Room : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Room)
    DECLARE_ZO_FIELD(ZoString, name)
    DECLARE_ZO_FIELD_LIST(double, heights)
    DECLARE_ZO_FIELD_REFERENCE(Room, next)
    DECLARE_ZO_FIELD_CHILD(ZoObjectStreamable, inner)
    REGISTER_ZO_END
};
/// The same class in a later version of the application.
namespace later {
class Room : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Room)
    DECLARE_ZO_FIELD(ZoString, title)
    DECLARE_ZO_FIELD_LIST(double, heights)
    DECLARE_ZO_FIELD_REFERENCE(Room, next)
    DECLARE_ZO_FIELD_CHILD(ZoObjectStreamable, inner)
    REGISTER_ZO_END
};
} // namespace later
class Hall : public Room {
    REGISTER_ZO_BEGIN(Hall, Room)
    DECLARE_ZO_FIELD(int, seats)
    REGISTER_ZO_END
};
class Attic : public Room {}; // without a registration of its own
class Mark : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Mark)
    REGISTER_ZO_END
};
class Plan : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Plan)
    DECLARE_ZO_FIELD_CHILD_LIST(Mark, marks)
    REGISTER_ZO_END
};

template <class... Classes>
void Register(TZoMetaData& schema) {
    (Classes::Register(&schema), ...);
}

/// Everything that a developer hears of an operation, in one text.
std::string SaidOf(const std::function<void(std::string&)>& operation) {
    std::string said;
    try {
        operation(said);
    } catch (const XZoAssertFailed& failure) {
        said += *failure.Hint() != '\0' ? failure.Hint() : failure.Expression();
        said += std::string(" | ") + failure.Advice();
        EXPECT_THAT(ZoExplain().c_str(), testing::HasSubstr(failure.Advice()));
    } catch (const XStream& failure) {
        said += failure.Message().c_str();
    }
    return said;
}

TEST(MistakesTests, AreTold) {
    const ZoPrimitives::Testing::TemporaryFolder folder;
    const std::string path = folder.Path("plan.zo");
    TZoMetaData schema;
    Register<Room, Hall>(schema);
    TZoMetaData small;
    Register<Room>(small);
    TZoMetaData after;
    Register<later::Room>(after);
    Room root, alone;
    root.name = "root";
    Hall hall;
    Attic attic;
    const auto save = [&](ZoStreamableBase& object, TZoMetaData& with) { ZoSaveInMemory(&object, &with); };
    const auto report = [&](ZoStreamableBase& object, TZoMetaData& with, std::string& said) {
        said += ZoOpenFromMemory<ZoObjectStreamable>(ZoSaveInMemory(&object, &schema), &with)
                    .Report()
                    .Text()
                    .c_str();
    };
    const struct {
        const char* done;
        std::function<void(std::string&)> does;
        const char* said;
    } rows[] = {
        {"a class is not registered", [&](std::string&) { save(hall, small); },
         "class 'class mistakes::Hall' not register"},
        {"an object of such a class hangs below the root",
         [&](std::string&) {
             Room owner;
             owner.inner = new Hall;
             save(owner, small);
         },
         "class 'class mistakes::Hall' not register"},
        {"a subclass has no registration of its own", [&](std::string&) { save(attic, schema); },
         "mistakes::Attic"},
        {"a class is registered before its base",
         [&](std::string&) {
             TZoMetaData other;
             Register<Hall, Room>(other);
             save(hall, other);
         },
         "parent class of Hall not registered"},
        {"two classes have one name",
         [&](std::string&) {
             TZoMetaData other;
             Register<Room, later::Room>(other);
             save(root, other);
         },
         "two C++ classes are called Room: the second one is not registered"},
        {"the class of a field is not registered",
         [&](std::string&) {
             TZoMetaData other;
             Register<Plan>(other);
             Plan plan;
             save(plan, other);
         },
         "Mark"},
        {"objects of a class without fields are to be saved",
         [&](std::string&) {
             TZoMetaData other;
             Register<Mark, Plan>(other);
             Plan plan;
             save(plan, other);
         },
         "Mark"},
        {"nobody owns what is referred to",
         [&](std::string&) {
             Room owner;
             owner.next = &alone;
             save(owner, schema);
         },
         "child reference 'next'"},
        {"a field was renamed", [&](std::string& said) { report(root, after, said); }, "Room.name"},
        {"a class is not known to the application",
         [&](std::string& said) {
             Room owner;
             owner.inner = new Hall;
             report(owner, small, said);
         },
         "Classe Hall desconhecida: 1 objetos lidos como Room"},
        {"indices begin at 0", [&](std::string&) { root.heights[0] = 1; },
         "index >= 1 && index <= NItems() | index 0 in a TDVector<double> of 0 items: indices count from 1"},
        {"a loop runs over the end",
         [&](std::string&) {
             TDList<int> list;
             list.Add(1);
             for (unsigned i = 1; i <= 2; ++i) list[i] = 0;
         },
         "index 2 in a TDList<int> of 1 item: indices count from 1"},
        {"positions of a text begin at 1", [&](std::string&) { root.name[4] = 'x'; },
         "pos < length() | position 4 in a text of 4 characters: positions count from 0"},
        {"a null pointer is used", [&](std::string&) { root.inner->GetIsValid(); },
         "object | a pointer<ZoObjectStreamable> without an object was used"},
        {"a null reference is used", [&](std::string&) { root.next->name = "x"; },
         "object | a crossRef<mistakes::Room> without an object was used"},
        {"a record is too big",
         [&](std::string&) {
             Room big;
             for (int i = 0; i < 1'400'000; ++i) big.heights.Add(i);
             save(big, schema);
         },
         "an object of class Room takes 11200016 bytes of the 10485760 that a record may have, "
         "11200004 of "
         "them its field heights"},
        {"a stream to memory was not initialised",
         [&](std::string&) {
             TMemoryBinOutStream stream;
             TBinOutStreamer(&stream, &schema).WriteObjectWithMetaData(&root);
         },
         "call Initialize of the stream before writing"},
        {"a stream to a file was not initialised",
         [&](std::string&) {
             const pointer<TFileBinOutStream> file(TFileBinOutStream::Create(path.c_str(), false));
             TBinOutStreamer(file.get(), &schema).WriteObjectWithMetaData(&root);
         },
         "Initialize"},
        {"a stream to read was not initialised",
         [&](std::string&) {
             const ZoBlob saved = ZoSaveInMemory(&root, &schema);
             TMemoryBinInStream stream(saved.Data(), saved.Size(), 0);
             TBinInStreamer(&stream, &schema).ReadObjects();
         },
         "call Initialize of the stream before reading"},
        {"no schema was written",
         [&](std::string&) {
             TMemoryBinOutStream stream;
             stream.Initialize();
             TBinOutStreamer(&stream, &schema).WriteObject(&root);
         },
         "no schema was written: call WriteObjectMetaData before WriteObject"},
        {"a stream writes a second file",
         [&](std::string&) {
             const pointer<TFileBinOutStream> file(TFileBinOutStream::Create(path.c_str(), false));
             for (int i = 0; i < 2; ++i) {
                 file->Initialize();
                 TBinOutStreamer(file.get(), &schema).WriteObjectWithMetaData(&root);
                 file->Finalize();
             }
         },
         "a stream writes one file"},
        {"there is no root", [&](std::string&) { ZoSaveInMemory(static_cast<Room*>(nullptr), &schema); },
         "there is nothing to save"},
        {"a version that no reader accepts", [&](std::string&) { ZoSaveInMemory(&root, &schema, {20261}); },
         "no reader accepts this version"},
        {"another root is expected",
         [&](std::string&) { ZoOpenFromMemory<Hall>(ZoSaveInMemory(&root, &schema), &schema); },
         "de outra classe: mistakes::Room (mistakes::Hall)"},
        {"a unit of another quantity", [&](std::string&) { GComprimento::UnidadePorNome("kN"); },
         "Nome da unidade incorreto."},
    };
    for (const auto& row : rows) EXPECT_THAT(SaidOf(row.does), testing::HasSubstr(row.said)) << row.done;
}

} // namespace mistakes
