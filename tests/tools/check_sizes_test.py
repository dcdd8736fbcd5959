#!/usr/bin/env python3
"""Plants headers and classes over their limits and looks whether tools/check_sizes.py complains of each."""

import pathlib
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
sys.dont_write_bytecode = True
sys.path.insert(0, str(ROOT / "tools"))
import check_sizes  # noqa: E402

MIXED = """
/// A class { of; many( things.
class Mixed : public Base<Other, 3> {
    Q_OBJECT
public:
    explicit Mixed(int start = 0) : value(start) { }
    ~Mixed() override;
    Mixed& operator=(const Mixed&) = delete;
    bool operator==(const Mixed& other) const = default;
    std::function<void(int)> made(std::function<int(int)> way);
    [[nodiscard]] int get() const { if (value) { return 1; } return value; }
    template <class T> T as() const;
signals:
    void changed();
private:
    struct Inner {
        int one;
        int two = 2;
    };
    enum class Kind { A, B };
    using Text = std::string;
    friend class Tester;
    static constexpr int kLimit = 3;
    int value = 0;
    std::function<void(int)> call;
    std::vector<std::pair<int, int>> pairs{};
    std::atomic<bool> flag{ false };
};
"""


class Sizes(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name)
        before = check_sizes.EXCEPTIONS
        self.addCleanup(setattr, check_sizes, "EXCEPTIONS", before)
        check_sizes.EXCEPTIONS = {}

    def put(self, text):
        (self.root / "core").mkdir(exist_ok=True)
        (self.root / "core/Planted.h").write_text(text, encoding="utf-8")

    def complaints(self):
        return list(check_sizes.complaints(self.root))

    def test_methodsAndFieldsOfAMixedClassAreCounted(self):
        sizes = {size.name: size for size in check_sizes.classes_of(MIXED)}
        self.assertEqual((7, 4), sizes["Mixed"][1:])
        self.assertEqual((0, 2), sizes["Inner"][1:])
        self.assertNotIn("Tester", sizes)
        self.assertNotIn("Kind", sizes)

    def test_headerAtItsLimitPassesAndOneLineMoreIsFound(self):
        self.put("//\n" * check_sizes.HEADER_LINES)
        self.assertEqual([], self.complaints())
        self.put("//\n" * (check_sizes.HEADER_LINES + 1))
        self.assertEqual(["core/Planted.h: 151 lines, at most 150"], self.complaints())

    def planted(self, methods, fields):
        self.put("class Planted { " + " ".join(f"void method{i}();" for i in range(methods))
                 + " ".join(f"int field{i} = 0;" for i in range(fields)) + " };\n")

    def test_classAtItsLimitsPasses(self):
        self.planted(check_sizes.METHODS, check_sizes.FIELDS)
        self.assertEqual([], self.complaints())

    def test_methodTooManyIsFound(self):
        self.planted(check_sizes.METHODS + 1, 0)
        self.assertIn("Planted has 31 methods and 0 fields", self.complaints()[0])

    def test_fieldTooManyIsFound(self):
        self.planted(0, check_sizes.FIELDS + 1)
        self.assertIn("Planted has 0 methods and 26 fields", self.complaints()[0])

    def test_exceptionSilencesItsClassAndIsFoundWhereItIsNotNeeded(self):
        check_sizes.EXCEPTIONS = {"Planted": "reason"}
        self.planted(0, check_sizes.FIELDS + 1)
        self.assertEqual([], self.complaints())
        self.planted(0, check_sizes.FIELDS)
        self.assertEqual(["Planted needs no exception any more"], self.complaints())


if __name__ == "__main__":
    unittest.main()
