"""Reading documents and asking them."""

import copy
import os
import pathlib
import pickle
import tempfile
import threading
import unittest

import sbd

EXAMPLES = pathlib.Path(os.environ["SBD_EXAMPLES"])

TEXT = """# a board
device board {
  family = veldran_arm;
  module stripe {
    size = 64K [display board.label, readonly];
    rate = 1.5MHz; half = 0.5; on = TRUE; title = "two ä words";
    list = {1, "s", {true, {2.5, x}}};
    source <board.family, .size>;
    Parameters clocks { main = 50MHz; mask = 0xFf; }
  }
}
"""


class Reading(unittest.TestCase):
    def test_reads_a_file_by_any_kind_of_path(self):
        path = EXAMPLES / "qmxa10_full.sbd"
        for kind in (path, str(path), os.fsencode(path)):
            self.assertEqual(sbd.read(kind)["board.stripe.sdram.data_width"], 32)

    def test_faults_are_an_exception_with_all_findings(self):
        with self.assertRaises(sbd.ReadError) as caught:
            sbd.read_text("device d {\n  a = ;\n  b = 1;\n  c 2;\n}\n", name="f.sbd")
        findings = caught.exception.findings
        self.assertEqual([finding.position[:2] for finding in findings], [(2, 7), (4, 5)])
        self.assertEqual(findings[0], sbd.Finding(
            "error", 2, "ESBD_SBD_SYNTAX_ERROR",
            'System Build Descriptor File f.sbd contains syntax error ";" at line 2', "",
            sbd.Position(line=2, column=7, offset=17, length=1)))
        self.assertIn("2:7: error: System Build", str(caught.exception))

    def test_a_missing_file_is_an_os_error(self):
        with self.assertRaises(OSError) as caught:
            sbd.read("no such file.sbd")
        self.assertIsInstance(caught.exception, sbd.UnreadableError)
        self.assertEqual(caught.exception.findings[0].key, "ESBD_SBD_FILE_ERROR")
        self.assertIsNone(caught.exception.findings[0].position)

    def test_bytes_that_are_not_utf8_come_back_as_they_were(self):
        text = b'device d { a = "\xff"; }'
        document = sbd.read_text(text)
        self.assertEqual(document["d.a"], "\udcff")
        self.assertEqual(document.text.encode("utf-8", "surrogateescape"), text)

    def test_reads_names_in_utf8(self):
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder) / "bö 基板.sbd"
            path.write_text("device d { a = 5; }")
            self.assertEqual(sbd.read(path)["d.a"], 5)


class Asking(unittest.TestCase):
    def setUp(self):
        self.document = sbd.read_text(TEXT)

    def test_values_have_types_of_python(self):
        values = {"size": 65536, "rate": 1500000.0, "half": 0.5, "on": True,
                  "title": "two ä words", "list": [1, "s", [True, [2.5, "x"]]],
                  "source": ("board.family", "board.stripe.size"), "clocks.main": 50000000,
                  "clocks.mask": 255}
        for name, value in values.items():
            found = self.document["board.stripe." + name]
            self.assertEqual(found, value)
            self.assertIs(type(found), type(value))

    def test_names_are_in_any_case_and_may_leave_the_one_device_out(self):
        self.assertEqual(self.document["Board.STRIPE.size"], 65536)
        self.assertEqual(self.document["stripe.size"], 65536)
        self.assertEqual(self.document["family"], "veldran_arm")

    def test_with_two_devices_none_may_be_left_out(self):
        document = sbd.read_text("device a { x = 1; }\ndevice b { x = 2; }\n")
        self.assertEqual(document["b.x"], 2)
        self.assertNotIn("x", document)

    def test_what_is_not_there(self):
        with self.assertRaises(KeyError):
            self.document["board.nothing"]
        with self.assertRaises(KeyError):
            self.document["board.stripe"]  # A block has no value.
        self.assertIsNone(self.document.get("nothing"))
        self.assertEqual(self.document.get("nothing", 7), 7)
        self.assertIn("board.stripe", self.document)
        self.assertNotIn("board.nothing", self.document)
        with self.assertRaises(KeyError):
            self.document.parameters("nothing")
        with self.assertRaises(KeyError):
            self.document.blocks("board.family")

    def test_finds_blocks_and_statements(self):
        block = self.document.find("stripe.clocks")
        self.assertIsInstance(block, sbd.Block)
        self.assertEqual((block.name, block.own_name, block.type, block.depth),
                         ("board.stripe.clocks", "clocks", "Parameters", 2))
        size = self.document.find("stripe.size")
        self.assertEqual((size.kind, size.unit, size.unscaled), ("decimal", "K", 64))
        self.assertEqual(size.attributes, {"display": "board.label", "readonly": None})
        self.assertEqual(size.position, sbd.Position(5, 5, 71, 43))
        self.assertEqual(size.name_position, sbd.Position(5, 5, 71, 4))
        self.assertEqual(size.value_position, sbd.Position(5, 12, 78, 3))
        source = self.document.find("stripe.source")
        self.assertIsInstance(source, sbd.Reference)
        self.assertEqual(source.written, ("board.family", ".size"))
        self.assertEqual(self.document.find("stripe.title").kind, "string")
        self.assertEqual(self.document.find("family").kind, "word")

    def test_iterates_in_file_order(self):
        self.assertEqual([block.name for block in self.document.blocks()],
                         ["board", "board.stripe", "board.stripe.clocks"])
        self.assertEqual([item.own_name for item in self.document.items("board.stripe")],
                         ["size", "rate", "half", "on", "title", "list", "source", "clocks", "main",
                          "mask"])
        self.assertEqual([type(item) for item in self.document][-3:],
                         [sbd.Block, sbd.Parameter, sbd.Parameter])
        self.assertEqual([(p.own_name, p.position.line) for p in self.document.parameters()][-1],
                         ("mask", 9))
        self.assertEqual([r.targets for r in self.document.references()],
                         [("board.family", "board.stripe.size")])
        self.assertEqual(list(sbd.Document()), [])

    def test_items_stay_when_the_document_changes_or_goes(self):
        parameters = self.document.parameters()
        size = self.document.find("stripe.size")
        self.document["stripe.size"] = 1
        del self.document
        self.assertEqual(size.value, 65536)
        self.assertEqual(size.attributes["display"], "board.label")
        self.assertEqual(len(list(parameters)), 9)

    def test_who_is_on_the_way_sees_the_state_at_the_start(self):
        count = 1000
        document = sbd.read_text(
            "device d {%s}" % "".join(f" p{number} = {number};" for number in range(count)))
        parameters = document.parameters()
        blocks = document.blocks()
        first = [next(parameters) for _ in range(10)]
        with document.edit():
            for number in range(count):
                document[f"d.p{number}"] = -1.5
            del document["d.p500"]
            document["d.late"] = 1
        rest = list(parameters)
        self.assertEqual([p.value for p in first + rest], list(range(count)))
        self.assertEqual([p.position.line for p in rest], [1] * (count - 10))
        self.assertEqual([p.value for p in document.parameters("d")], [-1.5] * (count - 1) + [1])
        document.add_block("module", "d.m")
        self.assertEqual([block.name for block in blocks], ["d"])
        self.assertEqual([block.name for block in document.blocks()], ["d", "d.m"])

    def test_each_iteration_goes_its_own_way(self):
        pairs = [(outer.own_name, inner.own_name) for outer in self.document.blocks()
                 for inner in self.document.blocks(outer.name)]
        self.assertEqual(pairs, [("board", "stripe"), ("board", "clocks"), ("stripe", "clocks")])
        unfinished = self.document.parameters()
        next(unfinished)
        del unfinished
        self.document["stripe.size"] = 1
        self.assertIn('"two ä words"', self.document.text)

    def test_an_iteration_outlives_the_document(self):
        document = sbd.read_text("device d {%s}" % (" a%d = 1;" * 1000 % tuple(range(1000))))
        parameters = document.parameters()
        del document
        self.assertEqual(sum(p.value for p in parameters), 1000)

    def test_positions_behave_like_tuples(self):
        position = self.document.find("stripe.size").value_position
        self.assertEqual(position, sbd.Position(line=5, column=12, offset=78, length=3))
        self.assertNotEqual(position, sbd.Position(5, 12, 78, 4))
        line, column, offset, length = position
        self.assertEqual((line, column, offset, length), (5, 12, 78, 3))
        self.assertEqual((position[0], position[-1], position[:2], len(position)),
                         (5, 3, (5, 12), 4))
        self.assertEqual(repr(position), "Position(line=5, column=12, offset=78, length=3)")
        self.assertEqual(len({position, sbd.Position(*position)}), 1)
        self.assertLess(position, self.document.find("stripe.rate").position)
        self.assertEqual(copy.deepcopy(position), position)
        self.assertEqual(pickle.loads(pickle.dumps(position)), position)
        with self.assertRaises(IndexError):
            position[4]
        with self.assertRaises(AttributeError):
            position.line = 1
        with self.assertRaises(TypeError):
            sbd.Position(1)

    def test_items_are_made_by_documents_alone(self):
        for kind in (sbd.Item, sbd.Block, sbd.Parameter, sbd.Reference):
            with self.assertRaises(TypeError):
                kind()
        self.assertEqual(repr(self.document.find("stripe")), "<Block board.stripe>")
        with self.assertRaises(AttributeError):
            self.document.find("stripe").name = "other"

    def test_texts_that_are_not_utf_8_come_back_as_they_were(self):
        document = sbd.read_text(b'device d { a = "\xff\xfe"; }')
        self.assertEqual(document["d.a"].encode("utf-8", "surrogateescape"), b"\xff\xfe")

    def test_numbers_of_any_unit_are_whole(self):
        document = sbd.read_text("device d { a = 4294967295G; b = 0xFFFFFFFFMHz; c = 0b11K; }")
        self.assertEqual([parameter.value for parameter in document.parameters()],
                         [4294967295 * 1024**3, 4294967295 * 10**6, 3072])
        self.assertEqual({type(parameter.value) for parameter in document.parameters()}, {int})

    def test_lists_may_nest_deeper_than_python_recurses(self):
        depth = 5000
        document = sbd.read_text("device d { l = %s1, 2%s; }" % ("{1, " * depth, "}" * depth))
        value = document["d.l"]
        for _ in range(depth - 1):
            value = value[1]
        self.assertEqual(value, [1, 1, 2])
        document["d.m"] = document["d.l"]
        self.assertEqual(document.find("d.m").kind, "list")

    def test_a_name_with_nul_is_refused(self):
        with self.assertRaises(ValueError):
            self.document["board\0.family"]

    def test_threads_take_turns(self):
        faults = []

        def use():
            for number in range(100):
                self.document["stripe.size"] = number
                if sum(1 for _ in self.document.parameters()) != 9:
                    faults.append(number)

        threads = [threading.Thread(target=use) for _ in range(4)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        self.assertEqual(faults, [])


if __name__ == "__main__":
    unittest.main()
