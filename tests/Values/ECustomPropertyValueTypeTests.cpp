#include "ZoPrimitives/ECustomPropertyValueType.h"

#include "ZoPrimitives/AnsiLiteral.h"

#include <gtest/gtest.h>

using namespace ZoPrimitives;

namespace {

using Kind = ECustomPropertyValueType;

TEST(ECustomPropertyValueTypeTest, Kinds) {
    const std::tuple<int, const char*, const char*, bool> rows[] = {
        {0, "Texto", "texto", false},
        {1, "Número"_ansi, "NÚMERO"_ansi, true},
        {2, "Sim/Não"_ansi, "sim/não"_ansi, false},
        {3, "Volume", "volume", true},
        {4, "Área"_ansi, "área"_ansi, true},
        {5, "Comprimento", "COMPRIMENTO", true},
        {6, "Massa", "massa", true},
        {7, "Potência"_ansi, "potência"_ansi, true},
        {8, "Fluxo luminoso", "Fluxo Luminoso", true},
        {9, "Corrente", "corrente", true},
        {10, "Ângulo"_ansi, "ângulo"_ansi, true},
        {11, "Inteiro", "inteiro", false},
    };
    int next = Kind::PrimeiroValor();
    for (const auto& [kind, name, asTyped, real] : rows) {
        EXPECT_EQ(kind, next++);
        EXPECT_EQ(Kind::Nome(kind), name);
        for (const char* read : {name, asTyped}) EXPECT_EQ(Kind::Value(read), kind) << read;
        EXPECT_TRUE(Kind(kind).IsRealNumber() == real && Kind::IsRealNumber(kind) == real) << name;
    }
    EXPECT_EQ(next, Kind::UltimoValor() + 1);
}

TEST(ECustomPropertyValueTypeTest, OtherNumbersAndNames) {
    for (const int kind : {12, -1, 2147483647}) {
        EXPECT_EQ(Kind(kind), kind) << "held as given";
        EXPECT_EQ(Kind::Nome(kind), "Texto");
        EXPECT_FALSE(Kind(kind).IsRealNumber());
    }
    for (const char* name : {"", "Tempo", "Texto ", "Volum"})
        EXPECT_EQ(Kind::Value(name), Kind::Texto) << name;
    EXPECT_EQ(Kind(), Kind::Texto);
    Kind assigned;
    assigned = Kind(Kind::Massa);
    EXPECT_EQ(assigned, 6);
}

} // namespace
