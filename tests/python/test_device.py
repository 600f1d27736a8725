"""Devices: parameters, clocks and findings."""

import dataclasses
import os
import pathlib
import unittest

import sbd

EXAMPLES = pathlib.Path(os.environ["SBD_EXAMPLES"])


class Devices(unittest.TestCase):
    def test_a_good_device(self):
        device = sbd.Device(EXAMPLES / "qmxa10_full.sbd", "board")
        self.assertTrue(device.is_good)
        self.assertEqual(device.findings, ())
        self.assertEqual((device.chip, device.module), ("qmxa10", "board.stripe"))
        self.assertEqual(device.clocks, sbd.Clocks(ahb1=200e6, ahb2=100e6, sdram=125e6))
        self.assertEqual(device.dpram_widths, (32, 16))
        self.assertEqual(device["SDRAM.data_width"], 32)
        self.assertIs(type(device["sdram.enabled"]), bool)
        self.assertIn("endian", device)
        self.assertNotIn("no.such", device)
        with self.assertRaises(KeyError):
            device["no.such"]

    def test_parameters_are_data_classes_in_order(self):
        device = sbd.Device(EXAMPLES / "qmxa1_minimal.sbd", "board")
        self.assertEqual(list(device), list(device.parameters.values()))
        self.assertEqual(len(device), len(device.parameters))
        enabled = device.parameters["sdram.enabled"]
        self.assertEqual(dataclasses.asdict(enabled), {
            "name": "sdram.enabled", "type": bool, "value": False,
            "origin": "absent block default", "is_required": False,
            "allowed": enabled.allowed, "position": None})
        endian = device.parameters["endian"]
        self.assertEqual((endian.value, endian.origin, endian.allowed, endian.position),
                         ("little", "present block default", "one of: little, big", None))
        clock = device.parameters["clocks.input_clock_frequency"]
        self.assertEqual((clock.value, clock.origin, clock.is_required),
                         (12000000, "statement", True))
        self.assertGreater(clock.position.line, 1)

    def test_faults_are_findings(self):
        device = sbd.Device(EXAMPLES / "faulty_device.sbd", "board")
        self.assertFalse(device.is_good)
        self.assertEqual(len(device.findings), 54)
        for finding in device.findings:
            self.assertIn(finding.parameter, device)
            self.assertIsNotNone(finding.position)

    def test_other_faults(self):
        device = sbd.Device.from_text("device board { a = ; }", "board", "f.sbd")
        self.assertEqual([finding.number for finding in device.findings], [2])
        self.assertEqual(device.clocks, sbd.Clocks(None, None, None))
        self.assertEqual(len(device), 0)
        mips = sbd.Device(EXAMPLES / "multi_device.sbd", "display_board")
        self.assertIn("There are no rules for the chip 'qmxm4'.", mips.findings[0].text)
        with self.assertRaises(OSError):
            sbd.Device("no such file", "board")
        with self.assertRaises(ValueError):
            sbd.Device(EXAMPLES / "qmxa1_minimal.sbd", "")


if __name__ == "__main__":
    unittest.main()
