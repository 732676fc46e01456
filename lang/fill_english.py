#!/usr/bin/env python3
"""Makes the English catalogue complete: every message translates to its own source text.

    python3 lang/fill_english.py lang/monitor_en.ts
"""
import sys
import xml.etree.ElementTree as ET


def main(path):
    tree = ET.parse(path)
    for message in tree.getroot().iter("message"):
        source = message.find("source")
        translation = message.find("translation")
        if message.get("numerus") == "yes":
            continue
        translation.text = source.text
        translation.attrib.pop("type", None)
    tree.write(path, encoding="utf-8", xml_declaration=True)
    # lupdate writes a DOCTYPE line; keep the file in the same shape for clean diffs
    with open(path, encoding="utf-8") as f:
        text = f.read()
    text = text.replace("<?xml version='1.0' encoding='utf-8'?>\n", '<?xml version="1.0" encoding="utf-8"?>\n<!DOCTYPE TS>\n', 1)
    with open(path, "w", encoding="utf-8") as f:
        f.write(text if text.endswith("\n") else text + "\n")


if __name__ == "__main__":
    main(sys.argv[1])
