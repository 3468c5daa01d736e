"""Tests of the check of the catalogues."""

import importlib.machinery
import importlib.util
import pathlib
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as xml

CHECK = pathlib.Path(__file__).with_name("check-translations")
CATALOGUES = pathlib.Path(__file__).resolve().parents[2] / "translations"


def load():
    loader = importlib.machinery.SourceFileLoader("check_translations", str(CHECK))
    module = importlib.util.module_from_spec(importlib.util.spec_from_loader(loader.name, loader))
    loader.exec_module(module)
    return module


check = load()


def problems(source, *translations, state=None, context="Class"):
    """Of one message; several translations are plural forms."""
    message = xml.Element("message")
    xml.SubElement(message, "source").text = source
    translation = xml.SubElement(message, "translation")
    if state:
        translation.set("type", state)
    if len(translations) == 1:
        translation.text = translations[0]
    else:
        message.set("numerus", "yes")
        for text in translations:
            xml.SubElement(translation, "numerusform").text = text
    return list(check.problems_of(check.Message(context, message)))


class Messages(unittest.TestCase):
    GOOD = [
        ("Start", "Starten"),
        ("Camera %1 of %2", "%2 hat die Kamera %1"),
        ("Average\nthroughput", "Mittlerer\nDurchsatz"),
        ("&Open", "Ö&ffnen"),
        ("Drag && drop", "Ziehen und Ablegen"),
        ("Setup...", "Einrichten..."),
        ("<b>%1</b>&nbsp;x", "<b>%1</b> x"),
        (", %n damaged", ", %n fehlerhaft", ", %n fehlerhafte"),
    ]
    BAD = [
        ("Start", ""),
        ("Start", "  "),
        ("Camera %1", "Kamera"),
        ("Camera %1", "Kamera %2"),
        ("%1 %1", "%1"),
        ("Average\nthroughput", "Mittlerer Durchsatz"),
        ("Reset", "Zurück\nsetzen"),
        ("&Open", "Öffnen"),
        ("Open", "Ö&ffnen"),
        ("Setup...", "Einrichten"),
        ("Setup...", "Einrichten…"),
        ("File:", "Datei"),
        ("Done.", "Fertig"),
        (" of %1", "von %1"),
        ("<b>%1</b>", "%1"),
        ("CSV files (*.csv)", "CSV-Dateien (*.txt)"),
        (", %n damaged", ", %n fehlerhaft", ", fehlerhafte"),
        (", %n damaged", ", %n fehlerhaft", ""),
    ]

    def test_good(self):
        for texts in self.GOOD:
            with self.subTest(texts):
                self.assertEqual(problems(*texts), [])

    def test_bad(self):
        for texts in self.BAD:
            with self.subTest(texts):
                self.assertNotEqual(problems(*texts), [])

    def test_unfinished(self):
        self.assertNotEqual(problems("Start", "Starten", state="unfinished"), [])

    def test_unknown_class(self):
        self.assertNotEqual(problems("Start", "Starten", context=""), [])


class Catalogues(unittest.TestCase):
    """The program on a changed copy of the real ones."""

    def run_on(self, change):
        with tempfile.TemporaryDirectory() as name:
            folder = pathlib.Path(name)
            for path in CATALOGUES.glob("*.ts"):
                tree = xml.parse(path)
                change(tree.getroot(), path.stem)
                tree.write(folder / path.name, encoding="utf-8", xml_declaration=True)
            done = subprocess.run([sys.executable, CHECK, folder], capture_output=True, text=True, check=False)
            return done.returncode, done.stdout + done.stderr

    def test_text_missing(self):
        def remove_first(root, _):
            context = root.find("context")
            context.remove(context.find("message"))

        code, output = self.run_on(remove_first)
        self.assertEqual((code, output.count("not in the catalogue")), (1, 2), output)

    def test_text_left_over(self):
        def rename_first(root, stem):
            if stem.startswith("velmora"):
                root.find("context/message/source").text = "Nobody says this."

        code, output = self.run_on(rename_first)
        self.assertEqual((code, output.count("no longer in the sources")), (1, 1), output)

    def test_other_language(self):
        code, output = self.run_on(lambda root, _: root.set("language", "fr"))
        self.assertEqual((code, output.count("its language is fr")), (1, 2), output)


if __name__ == "__main__":
    unittest.main()
