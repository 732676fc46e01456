#!/usr/bin/env python3
"""Checks the texts of one program catalogue (lang/monitor_<code>.ts).

    check_catalogue.py CATALOGUE SAME_AS_ENGLISH

Every message must have a finished, non-empty translation that keeps the
source's place holders (%1, %2, ...) and has an accelerator ("&") exactly when
the source has one; a numerus message so in each of its forms, each keeping
%n too. Outside the English catalogue a translation may equal its source only
when the source has no letter besides its place holders, or when
SAME_AS_ENGLISH lists it for that language. Prints one line per problem and
exits with 1 when there is any.
"""
import os
import re
import sys
import xml.etree.ElementTree as ET

PLACE_HOLDER = re.compile(r"%\d+")


def accelerators(text):
    # "&&" is a literal ampersand, any other "&" marks the next character
    return len(re.findall(r"&(?!&)", text.replace("&&", "")))


def allowed_same(path, language):
    allowed = set()
    with open(path, encoding="utf-8") as lines:
        for line in lines:
            line = line.rstrip("\n")
            if not line or line.startswith("#"):
                continue
            code, context, source = line.split("\t")
            if code == language:
                allowed.add((context, source))
    return allowed


def main(catalogue, same_as_english):
    language = re.fullmatch(r"monitor_(.+)\.ts", os.path.basename(catalogue)).group(1)
    allowed = allowed_same(same_as_english, language)
    used = set()
    problems = []
    count = 0
    for context in ET.parse(catalogue).getroot().iter("context"):
        name = context.findtext("name")
        for message in context.iter("message"):
            count += 1
            source = message.findtext("source") or ""
            translation = message.find("translation")
            where = f"{name}: {source!r}"
            kind = translation.get("type") if translation is not None else "missing"
            if kind:
                problems.append(f"{where} is {kind}")
                continue
            numerus = message.get("numerus") == "yes"
            if numerus:
                texts = [form.text or "" for form in translation.iter("numerusform")]
            else:
                texts = [translation.text or ""]
            if not texts or not all(text.strip() for text in texts):
                problems.append(f"{where} has an empty translation")
                continue
            for text in texts:
                if sorted(PLACE_HOLDER.findall(source)) != sorted(PLACE_HOLDER.findall(text)):
                    problems.append(f"{where} -> {text!r} does not keep the place holders")
                # every form stands for many counts (Russian's first for 1, 21, 31, ...)
                if numerus and "%n" not in text:
                    problems.append(f"{where} -> {text!r} does not keep %n")
                if accelerators(source) != accelerators(text) or accelerators(text) > 1:
                    problems.append(f"{where} -> {text!r} does not keep the one accelerator")
                if language != "en" and text == source:
                    if (name, source) in allowed:
                        used.add((name, source))
                    elif re.search(r"[^\W\d_]", PLACE_HOLDER.sub("", source.replace("%n", ""))):
                        problems.append(f"{where} is left in English")
    for context, source in sorted(allowed - used):
        problems.append(f"{same_as_english}: {language} {context}: {source!r} is not a text left in English")
    for problem in problems:
        print(f"FAIL: {os.path.basename(catalogue)}: {problem}")
    if not problems:
        print(f"{os.path.basename(catalogue)}: {count} texts")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1], sys.argv[2]))
