#!/usr/bin/env python3
"""Writes quantities.txt: what every unit of every quantity stores and reads, to the last bit.

The tables below were transcribed from the definition of the units on their own, not from the library's
sources. Python's floats are IEEE 754 doubles and each operation is rounded once, as in the library.

    python3 tests/data/quantities.py > tests/data/quantities.txt
"""

import struct

# Name | what turns a value in the unit into the storage unit | what turns the stored value into the unit.
# Operations are applied from left to right. One row a unit, in the order of their numbers.
QUANTITIES = {
    "GAngulo": """
        Radianos | as it is | as it is
        Graus | * 3.141592653589793 / 180 | * 180 / 3.141592653589793
        """,
    "GArea": """
        mm² | / 100 | * 100
        cm² | as it is | as it is
        m² | * 10000 | * 0.0001
        sq in | * 6.4516 | / 6.4516
        sq ft | * 929 | / 929
        """,
    "GAreaM": """
        cm²/m | as it is | as it is
        """,
    "GComprimento": """
        cm | as it is | as it is
        m | * 100 | * 0.01
        in | * 2.54 | / 2.54
        ft | * 30.48 | / 30.48
        mm | * 0.1 | * 10
        """,
    "GCorrente": """
        A | as it is | as it is
        kA | * 1000 | * 0.001
        """,
    "GEnergia": """
        kWh | as it is | as it is
        kcal | * 859.84524 | / 859.84524
        """,
    "GForcaArea": """
        kgf/m² | * 0.0001 | * 10000
        tf/m² | * 0.1 | * 10
        kN/m² | / 100 | * 100
        kp/m² | * 0.0001 | * 10000
        psf | / 2048.16 | * 2048.16
        ksf | / 2.04816 | * 2.04816
        kgf/cm² | as it is | as it is
        """,
    "GForcaConcentrada": """
        kgf | as it is | as it is
        tf | * 1000 | / 1000
        kN | * 100 | / 100
        kp | as it is | as it is
        lb | * 0.4536 | / 0.4536
        kip | * 453.6 | / 453.6
        """,
    "GForcaLinear": """
        kgf/m | * 0.01 | * 100
        tf/m | * 10 | * 0.1
        kN/m | as it is | as it is
        kp/m | * 0.01 | * 100
        lb/ft | / 67.197 | * 67.197
        kip/ft | * 14.88 | / 14.88
        lb/in | / 5.6 | * 5.6
        kgf/cm | as it is | as it is
        tf/cm | * 1000 | * 0.001
        """,
    "GInercia": """
        cm4 | as it is | as it is
        m4 | * 100000000 | * 1e-08
        in4 | * 41.62 | / 41.62
        """,
    "GIntensidade": """
        cm/s | as it is | as it is
        m/s | * 100 | * 0.01
        mm/min | * 0.0016666666666666668 | * 600
        mm/h | * 2.777777777777778e-05 | * 36000
        m/min | * 1.6666666666666667 | * 0.6
        """,
    "GMomento": """
        kgf.m | * 100 | * 0.01
        tf.m | * 100000 | * 1e-05
        kN.m | * 10000 | / 10000
        kp.m | * 100 | * 0.01
        tf.kip | * 13825.5 | / 13825.5
        ft.lb | * 13.8255 | / 13.8255
        kgf.cm | as it is | as it is
        tf.cm | * 1000 | * 0.001
        """,
    "GPeso": """
        kgf/m³ | * 1e-06 | * 1000000
        tf/m³ | * 0.001 | * 1000
        kN/m³ | * 0.0001 | * 10000
        kp/m³ | * 1e-06 | * 1000000
        lb/cu ft | / 62428 | * 62428
        kgf/cm³ | as it is | as it is
        """,
    "GPoderCalorifico": """
        kcal/m³ | as it is | as it is
        """,
    "GPotencia": """
        kcal/s | as it is | as it is
        kcal/min | * 0.016666666666666666 | * 60
        kcal/h | * 0.0002777777777777778 | * 3600
        CV | * 0.17574599782426456 | * 5.69003
        W | * 0.0002387 | * 4190.02
        kW | * 0.2386623 | * 4.19002
        """,
    "GPressaoCoesao": """
        kgf/cm² | as it is | as it is
        tf/m² | * 0.1 | * 10
        kN/m² | * 0.01 | * 100
        kp/cm² | as it is | as it is
        psi | / 14.22 | * 14.22
        ksi | / 0.01422 | * 0.01422
        """,
    "GPressaoHidraulica": """
        cm.c.a. | as it is | as it is
        m.c.a. | * 100 | * 0.01
        mm.c.a. | * 0.1 | * 10
        kPa | * 10.1978 | / 10.1978
        kgf/cm² | * 1000 | * 0.001
        """,
    "GPressaoTensao": """
        kgf/cm² | as it is | as it is
        tf/m² | * 0.1 | * 10
        kN/cm² | * 100 | / 100
        MPa | * 10 | * 0.1
        kp/cm² | as it is | as it is
        psi | / 14.22 | * 14.22
        ksi | / 0.01422 | * 0.01422
        tf/cm² | * 1000 | * 0.001
        """,
    "GRecalque": """
        kgf/cm³ | as it is | as it is
        tf/m³ | * 0.001 | * 1000
        kN/m³ | * 0.0001 | * 10000
        kp/cm³ | as it is | as it is
        lb/cu in | / 36.127 | * 36.127
        """,
    "GTemperatura": """
        ºC | as it is | as it is
        ºF | - 32 / 1.777777777777778 | * 1.777777777777778 + 32
        ºK | - 273.15 | + 273.15
        """,
    "GTempo": """
        s | as it is | as it is
        min | * 60 | / 60
        h | * 3600 | / 3600
        dia | * 86400 | / 86400
        ms | * 0.001 | * 1000
        """,
    "GVazao": """
        cm³/s | as it is | as it is
        m³/s | * 1000000 | * 1e-06
        m³/h | * 277.7777777777778 | * 0.0036
        m³/dia | * 11.57407407407407 | * 0.0864
        l/s | * 1000 | * 0.001
        l/min | * 16.66666666666667 | * 0.06
        l/dia | * 0.01157407407407407 | * 86.4
        """,
    "GVelocidade": """
        cm/s | as it is | as it is
        m/s | * 100 | * 0.01
        mm/h | * 2.777777777777778e-05 | * 36000
        - | * 0.0016666666666666668 | * 600
        km/h | * 27.77777777777778 | * 0.036
        """,
    "GVolume": """
        cm³ | as it is | as it is
        m³ | * 1000000 | * 1e-06
        cu in | * 16.387 | / 16.387
        cu ft | * 28317 | / 28317
        l | * 1000 | * 0.001
        """,
}

# Chosen so that dividing by the reciprocal instead of multiplying, or the other way round, shows in every row.
VALUES = [1.0, 0.1, -2.5984, 9.3e-06, -5.933657784978, -805271.10553, -0.20441, 0.0567565, 0.095, 0.001351497,
          0.13632, 7.6486e-06, -21211.87176868831]
# But for this one, where no value is known that would tell.
ALIKE = ["* 1.6666666666666667"]


def convert(value, operations, turned=False):
    """With `turned`, each factor as its reciprocal: for the check that this would show."""
    if operations == "as it is":
        return value
    words = operations.split()
    for operator, literal in zip(words[::2], map(float, words[1::2])):
        if operator == "+":
            value += literal
        elif operator == "-":
            value -= literal
        elif (operator == "*") != turned:
            value *= literal if operator == "*" else 1 / literal
        else:
            value /= literal if operator == "/" else 1 / literal
    return value


def bits(value):
    return struct.pack(">d", value).hex()


def main():
    print("# By quantities.py: class, unit, name (escaped Windows-1252), then for each of the values of the first")
    print("# line the value stored when it is set in the unit, and the value read in the unit when it is stored.")
    print("values", *map(bits, VALUES), sep="\t")
    for quantity, table in QUANTITIES.items():
        for unit, row in enumerate(filter(None, map(str.strip, table.split("\n")))):
            name, store, read = (part.strip() for part in row.split("|"))
            name = "" if name == "-" else name.encode("cp1252").decode("latin-1")
            for operations in store, read:
                if ("*" in operations or "/" in operations) and operations not in ALIKE:
                    exact = [convert(value, operations) for value in VALUES]
                    assert exact != [convert(value, operations, turned=True) for value in VALUES], row
            results = [bits(convert(value, way)) for value in VALUES for way in (store, read)]
            print(quantity, unit, name.encode("unicode_escape").decode(), *results, sep="\t")


if __name__ == "__main__":
    main()
