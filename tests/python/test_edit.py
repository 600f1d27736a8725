"""Edits, transactions and saving."""

import pathlib
import tempfile
import unittest

import sbd

TEXT = """device d {
    a   = 1;  # first
    b = "text";
    w = word;
    module m { x = 2; }
    r <d.m, d.a>;
}
"""


class Editing(unittest.TestCase):
    def setUp(self):
        self.document = sbd.read_text(TEXT)

    def line(self, number):
        return self.document.text.splitlines()[number - 1]

    def test_values_take_the_notation_of_the_format(self):
        self.document["d.a"] = 0.1
        self.assertEqual(self.line(2), "    a   = 0.1;  # first")
        self.document["d.a"] = 1e22
        self.assertEqual(self.line(2), "    a   = 10000000000000000000000.0;  # first")
        self.document["d.a"] = -3
        self.assertEqual(self.document["d.a"], -3)
        self.document["d.a"] = [1, [True, "x", "two words"]]
        self.assertEqual(self.document["d.a"], [1, [True, "x", "two words"]])
        self.document.set_notation("d.a", "0x40K")
        self.assertEqual(self.line(2), "    a   = 0x40K;  # first")

    def test_texts_keep_their_quotes(self):
        self.document["d.b"] = "word"
        self.assertEqual(self.line(3), '    b = "word";')
        self.document["d.w"] = "other"
        self.assertEqual(self.line(4), "    w = other;")
        self.document["d.w"] = "two words"
        self.assertEqual(self.line(4), '    w = "two words";')

    def test_a_new_parameter_is_added(self):
        self.document["m.y"] = True  # The one device may be left out.
        self.assertEqual(self.line(5), "    module m { x = 2; y = true; }")
        self.document.add("d.c", 5, before="b")
        self.assertEqual(self.line(3), "    c = 5;")
        with self.assertRaises(sbd.EditError):
            self.document.add("d.c", 6)
        with self.assertRaises(ValueError):
            self.document.add("d.z", 6, before="b", after="a")

    def test_what_the_format_has_no_form_for(self):
        for value in (2**32, float("inf"), float("nan"), 'a "quoted" text'):
            with self.assertRaises(ValueError):
                self.document["d.a"] = value
        with self.assertRaises(TypeError):
            self.document["d.a"] = None
        self.assertEqual(self.document.text, TEXT)

    def test_a_refusal_says_why_and_changes_nothing(self):
        with self.assertRaises(sbd.EditError) as caught:
            self.document["d.b"] = 5
        self.assertEqual(caught.exception.findings[0].key, "ESBD_SBD_ERROR")
        self.assertIn("'b'", str(caught.exception))
        with self.assertRaises(sbd.EditError):
            del self.document["d.a"]  # It is referred to.
        with self.assertRaises(KeyError):
            del self.document["d.nothing"]
        self.assertEqual(self.document.text, TEXT)

    def test_removes_and_renames(self):
        self.document.remove("d.a", with_references=True)
        self.document.rename("d.m", "n")
        del self.document["d.b"]
        self.assertEqual(self.document["d.r"], ("d.n",))
        self.assertNotIn("d.a", self.document)
        self.document.verify()
        self.document.remove("n", with_references=True)
        self.assertEqual([item.name for item in self.document], ["d", "d.w"])

    def test_blocks_references_and_attributes(self):
        self.document.add_block("region", "m.z")
        with self.assertRaises(sbd.EditError):
            self.document.verify()  # A block without anything in it.
        self.document["m.z.k"] = 1
        self.document.set_references("d.s", ["m.z", "d.a"], after="r")
        self.document.set_attributes("d.a", {"display": "d.b", "readonly": None})
        self.document.verify()
        self.assertEqual(self.document["d.s"], ("d.m.z", "d.a"))
        self.assertEqual(self.document.find("d.a").attributes, {"display": "d.b", "readonly": None})
        self.document.set_attributes("d.a", {})
        self.assertEqual(self.document.find("d.a").attributes, {})

    def test_short_names_follow_the_one_device(self):
        self.document.rename("m", "n")
        self.assertEqual(self.document["n.x"], 2)
        self.document.rename("d", "e")
        self.assertEqual((self.document["n.x"], self.document["e.n.x"]), (2, 2))
        with self.assertRaises(RuntimeError):
            with self.document.edit():
                self.document.rename("e", "f")
                self.assertEqual(self.document["f.n.x"], self.document["n.x"])
                raise RuntimeError
        self.assertEqual((self.document["n.x"], self.document["e.n.x"]), (2, 2))
        self.assertNotIn("f.n.x", self.document)

    def test_a_device_that_is_added_ends_short_names(self):
        self.document.add_block("device", "e")
        self.document["e.a"] = 9
        self.assertNotIn("a", self.document)
        del self.document["e"]
        self.assertEqual(self.document["a"], 1)


class Transactions(unittest.TestCase):
    def test_all_or_nothing(self):
        document = sbd.read_text(TEXT)
        with self.assertRaises(sbd.EditError):
            with document.edit():
                document["d.a"] = 2
                document.rename("d.m", "n")
                document["d.b"] = 3
        self.assertEqual(document.text, TEXT)

        with document.edit() as same:
            same["d.a"] = 2
        self.assertEqual(document["d.a"], 2)
        with document.edit():
            document["d.a"] = 3
        self.assertEqual(document["d.a"], 3)

    def test_transactions_do_not_nest(self):
        document = sbd.read_text(TEXT)
        with self.assertRaises(sbd.SbdError):
            with document.edit():
                document["d.a"] = 2
                with document.edit():
                    pass
        self.assertEqual(document.text, TEXT)


class Saving(unittest.TestCase):
    def test_saves_what_was_edited(self):
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder) / "board.sbd"
            path.write_text(TEXT)
            document = sbd.read(path)
            document["d.a"] = 8
            document.save()
            self.assertEqual(path.read_text(), TEXT.replace("a   = 1", "a   = 8"))

            other = path.with_name("other.sbd")
            document.save(other, canonical=True)
            self.assertIn("\n    a = 8;", other.read_text())
            with self.assertRaises(sbd.EditError):
                document.save(pathlib.Path(folder) / "no" / "folder.sbd")

    def test_a_text_from_memory_needs_a_path(self):
        with self.assertRaises(sbd.EditError):
            sbd.read_text(TEXT).save()


if __name__ == "__main__":
    unittest.main()
