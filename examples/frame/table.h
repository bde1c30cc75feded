#pragma once

#include "failure.h"
#include "words.h"

#include "ZoPrimitives/ZoUtf8.h"
#include "ZoPrimitives/grandeza.h"

#include <string>
#include <vector>

namespace Frame {

/// A comma-separated table with a line of headings and without quotes. What is wrong with it throws `Failure`
/// with file and line.
class Table {
public:
    struct Row {
        int line;
        std::vector<std::string> fields;
    };

    Table(const std::string& folder, const char* fileName, const std::vector<std::string>& headings);

    const std::vector<Row>& Rows() const { return rows; }

    [[noreturn]] void Fail(const Row& row, const std::string& what) const;

    /// A positive value with a decimal point; in `unit` if the text names none.
    template <class Quantity, class Unit>
    Quantity Value(const Row& row, const std::string& text, Unit unit) const {
        using namespace ZoPrimitives;
        Quantity value(0.0);
        const TLeituraDeGrandeza read = value.LeTexto(ZoFromUtf8(text.c_str()), '.', unit);
        if (read.esperado == TLeituraDeGrandeza::TEsperado::Unidade) {
            std::string names;
            for (int i = 0; !Quantity::NomeDaUnidade(Unit(i)).IsNull(); ++i)
                names += (i == 0 ? "" : ", ") + ZoToUtf8(Quantity::NomeDaUnidade(Unit(i)));
            Fail(row, Words("\"{1}\" has no unit that is known here: use {2}", {text, names}));
        }
        if (!read || !(value > 0)) Fail(row, Words("\"{1}\" is not a number above zero", {text}));
        return value;
    }

    /// A length whose unit is in the next field; fields count from 0.
    ZoPrimitives::GComprimento Length(const Row& row, std::size_t field) const {
        constexpr auto none = static_cast<ZoPrimitives::TComprimento>(-1);
        return Value<ZoPrimitives::GComprimento>(row, row.fields[field] + " " + row.fields[field + 1], none);
    }

    /// A finite number with a decimal point; fields count from 0.
    double Number(const Row& row, std::size_t field) const;

private:
    std::string name;
    std::vector<Row> rows;
    bool hasHeadings = false;
};

} // namespace Frame
