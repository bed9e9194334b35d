"""Checks a page of `fernwick-lab report`: well formed, nothing but the elements and attributes that the
page is made of, unique IDs, every link to one of them, headings in order, every picture with its text.

usage: report_page.py PAGE    prints one line for each fault; exit status 1 if there is one
"""

import sys
import xml.etree.ElementTree

ELEMENTS = set(
    "html head meta title style body header h1 h2 h3 small p nav main section article footer ul li a strong span "
    "code br div details summary table caption thead tbody tr th td "
    "svg defs desc pattern rect path text".split()
)
ATTRIBUTES = set(
    "lang charset http-equiv content name id class href role tabindex scope colspan open data-label aria-label "
    "aria-labelledby aria-hidden x y width height fill d patternUnits".split()
)


def find_faults(root):
    ids = [element.get("id") for element in root.iter() if element.get("id")]
    yield from (f"{name}: twice" for name in sorted({name for name in ids if ids.count(name) > 1}))
    level = 0
    for element in root.iter():
        if element.tag not in ELEMENTS:
            yield f"element {element.tag}"
        yield from (f"attribute {name}" for name in element.attrib if name not in ATTRIBUTES)
        link = element.get("href")
        if link is not None and (link[0] != "#" or link[1:] not in ids):
            yield f"link to {link}"
        if element.tag in ("h1", "h2", "h3"):
            if int(element.tag[1]) > level + 1:
                yield f"{element.tag} after h{level}"
            level = int(element.tag[1])
        if element.get("role") == "img":
            for name in element.get("aria-labelledby").split():
                if not (root.find(f".//*[@id='{name}']").text or "").strip():
                    yield f"empty {name}"


def main():
    faults = list(find_faults(xml.etree.ElementTree.parse(sys.argv[1]).getroot()))
    print("\n".join(faults), end="\n" if faults else "")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
