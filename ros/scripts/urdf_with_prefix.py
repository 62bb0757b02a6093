#!/usr/bin/python3
"""Writes a robot description with every link and joint name prefixed, so that several arms
share one TF tree, optionally mounted in a common frame:
urdf_with_prefix.py [--prefix=arm1_] [--parent=world [--xyz="X Y Z"]] [-o OUT] URDF.
Launch files use it as <param name="robot_description" command="...">; the arm's own geometry
is left as it is."""

import argparse
import sys
import xml.etree.ElementTree as ET

# Elements whose attribute names a link or a joint.
NAME_REFERENCES = {
    "link": "name",
    "joint": "name",
    "parent": "link",
    "child": "link",
    "mimic": "joint",
}


def prefixed(root, prefix):
    """Prefixes the names in the tree under a <robot> root, in place, and returns it."""
    if root.tag != "robot":
        raise ValueError(f"not a robot description: the root is <{root.tag}>")
    root.set("name", prefix + root.get("name", ""))
    for element in root.iter():
        attribute = NAME_REFERENCES.get(element.tag)
        if attribute is not None and element.get(attribute) is not None:
            element.set(attribute, prefix + element.get(attribute))
    return root


def mounted(root, prefix, parent, xyz):
    """Adds the link `parent` (not prefixed) and a fixed joint placing the arm's base in it."""
    base = prefix + "base_link"
    if root.find(f"link[@name='{base}']") is None:
        raise ValueError(f"no link {base} to mount")
    ET.SubElement(root, "link", name=parent)
    joint = ET.SubElement(root, "joint", name=prefix + "mount", type="fixed")
    ET.SubElement(joint, "parent", link=parent)
    ET.SubElement(joint, "child", link=base)
    ET.SubElement(joint, "origin", xyz=xyz, rpy="0 0 0")
    return root


def main(argv):
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n", 1)[0])
    parser.add_argument("--prefix", default="", help="put before every link and joint name")
    parser.add_argument("--parent", help="mount the base in this frame (e.g. world)")
    parser.add_argument("--xyz", default="0 0 0", help="where the base sits in --parent (m)")
    parser.add_argument("-o", "--output", help="write here instead of to standard output")
    parser.add_argument("urdf", help="the description to prefix")
    arguments = parser.parse_args(argv)
    keep_comments = ET.XMLParser(target=ET.TreeBuilder(insert_comments=True))
    try:
        root = prefixed(ET.parse(arguments.urdf, parser=keep_comments).getroot(), arguments.prefix)
        if arguments.parent:
            mounted(root, arguments.prefix, arguments.parent, arguments.xyz)
    except (OSError, ET.ParseError, ValueError) as error:
        sys.stderr.write(f"urdf_with_prefix: {error}\n")
        return 1
    ET.indent(root, space="  ")
    text = '<?xml version="1.0"?>\n' + ET.tostring(root, encoding="unicode") + "\n"
    if arguments.output:
        with open(arguments.output, "w", encoding="utf-8") as out:
            out.write(text)
    else:
        sys.stdout.write(text)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
