#!/usr/bin/env python3
"""Makes the English catalogue complete: every message translates to its own source text.

Run by the update_translations build target, between two lupdate passes.
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
    # the update_translations target runs lupdate again afterwards, which
    # writes the file back in lupdate's own form
    tree.write(path, encoding="utf-8", xml_declaration=True)


if __name__ == "__main__":
    main(sys.argv[1])
