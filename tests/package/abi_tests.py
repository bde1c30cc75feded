"""Applications that were built against the recorded interface can use the library (docs/abi.md)."""
import unittest

from harness import BUILD, SOURCE, run


class Interface(unittest.TestCase):
    def test_is_the_recorded_one(self):
        run(SOURCE / "tests/abi/abi.sh", BUILD / "bin/libZoPrimitives.so")


if __name__ == "__main__":
    unittest.main()
