#pragma once

#include "ZoPrimitives/FileInputStream.h"
#include "ZoPrimitives/FileOutputStream.h"
#include "ZoPrimitives/InputStreamer.h"
#include "ZoPrimitives/OutputStreamer.h"
#include "support/Streaming.h"
#include "support/TemporaryFolder.h"

/// An object's bytes in a file.
/// Expects the same object of the same class back.
inline std::string ExpectOpened(ZoPrimitives::TZoMetaData& schema, ZoPrimitives::ZoStreamableBase& object) {
    const ZoPrimitives::ZoObject& expected = object;
    EXPECT_EQ(object.GetClass(), object.GetOriginalClass(&schema));
    const std::string file = Save(schema, &object);
    Opened opened(file, schema);
    const ZoPrimitives::ZoObject& read = *opened.root;
    EXPECT_TRUE(read == expected && typeid(read) == typeid(expected));
    return file;
}

/// An object's text between its class and code 7, each token ended by '|'.
/// Expects the same object of the same class back from there, and what it does not know passed over.
inline std::string ExpectReadAsText(ZoPrimitives::TZoMetaData& schema,
                                    ZoPrimitives::ZoStreamableBase& object) {
    using namespace ZoPrimitives;
    const Testing::TemporaryFolder folder;
    OutputStreamer(new FileOutputStream(folder.Path("text").c_str(), false))
        << &object << 999 << "x" << 7 << 5;
    std::string text;
    for (const char c : folder.Read("text"))
        if (c != '\r') text += c == '\n' ? '|' : c;
    InputStreamer reader(new FileInputStream(folder.Path("text").c_str()), new StreamableFactory(&schema));
    int code = 0;
    ZoString name;
    reader >> code >> name;
    EXPECT_EQ(name, object.StreamableClassName());
    const pointer<ZoStreamableBase> made(reader.GetFactories()[1]->CreateObject(name));
    made->Read(reader);
    reader >> code;
    EXPECT_EQ(code, 5) << "what follows";
    const ZoObject &read = *made, &expected = object;
    EXPECT_TRUE(read == expected && typeid(read) == typeid(expected));
    EXPECT_EQ(reader.GetHandle(made.get()), 1);
    const std::string front = "0|" + Text(name) + "|3|1|", back = "999|x|7|5";
    EXPECT_EQ(text.find(front), 0u);
    EXPECT_EQ(text.substr(text.size() - back.size()), back);
    return text.substr(front.size(), text.size() - front.size() - back.size());
}
