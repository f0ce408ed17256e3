#!/usr/bin/env python3
"""Shows a sheet picture (SVG) in headless Chromium and proves the browser drew it.

Usage: render_check.py PICTURE.svg WORK_DIR

The picture is rendered twice: whole, and with its shapes layer left out. The check fails when the
whole picture is blank, when the cell layer shows no text or fills, when the picture has no
shapes, or when any shape that paints something (a fill, a line or a text) leaves the pixels of
its box unchanged against the picture without shapes: then the browser did not draw it.
"""
import os
import re
import shutil
import struct
import subprocess
import sys
import zlib
import xml.etree.ElementTree as ET

SVG = "{http://www.w3.org/2000/svg}"
PIXELS_PER_POINT = 4 / 3


def read_png(path):
    """Width, height and rows of (r, g, b) tuples of an 8-bit RGB or RGBA PNG."""
    with open(path, "rb") as f:
        data = f.read()
    if data[:8] != b"\x89PNG\r\n\x1a\n":
        raise ValueError(f"{path} is not a PNG")
    at, idat, header = 8, b"", None
    while at < len(data):
        length, kind = struct.unpack(">I4s", data[at:at + 8])
        body = data[at + 8:at + 8 + length]
        if kind == b"IHDR":
            header = struct.unpack(">IIBBBBB", body)
        elif kind == b"IDAT":
            idat += body
        at += 12 + length
    width, height, depth, colour, _, _, interlace = header
    if depth != 8 or colour not in (2, 6) or interlace:
        raise ValueError(f"{path}: only 8-bit RGB(A) PNGs without interlace are read")
    channels = 3 if colour == 2 else 4
    raw = zlib.decompress(idat)
    stride = width * channels
    rows, previous = [], bytearray(stride)
    for y in range(height):
        kind = raw[y * (stride + 1)]
        line = bytearray(raw[y * (stride + 1) + 1:(y + 1) * (stride + 1)])
        for i in range(stride):
            left = line[i - channels] if i >= channels else 0
            up = previous[i]
            corner = previous[i - channels] if i >= channels else 0
            if kind == 1:
                line[i] = (line[i] + left) & 0xFF
            elif kind == 2:
                line[i] = (line[i] + up) & 0xFF
            elif kind == 3:
                line[i] = (line[i] + (left + up) // 2) & 0xFF
            elif kind == 4:
                p = left + up - corner
                pa, pb, pc = abs(p - left), abs(p - up), abs(p - corner)
                predictor = left if pa <= pb and pa <= pc else up if pb <= pc else corner
                line[i] = (line[i] + predictor) & 0xFF
        rows.append([tuple(line[x * channels:x * channels + 3]) for x in range(width)])
        previous = line
    return width, height, rows


def screenshot(svg_path, png_path, width, height, profile):
    browser = shutil.which("chromium") or shutil.which("chromium-browser")
    if browser is None:
        sys.exit("FAIL: chromium is not installed (scripts/install-deps installs it)")
    shutil.rmtree(profile, ignore_errors=True)
    command = [browser, "--headless", "--no-sandbox", "--disable-gpu", "--disable-quic",
               "--no-first-run", "--disable-background-networking", "--disable-component-update",
               "--disable-sync", "--hide-scrollbars", "--force-device-scale-factor=1",
               f"--user-data-dir={profile}", f"--screenshot={png_path}",
               f"--window-size={width},{height}", "file://" + os.path.abspath(svg_path)]
    if os.path.exists(png_path):
        os.remove(png_path)
    result = subprocess.run(command, capture_output=True, text=True, timeout=180)
    if not os.path.exists(png_path):
        sys.exit(f"FAIL: chromium wrote no screenshot of {svg_path}:\n{result.stderr[-2000:]}")


def numbers(text):
    return [float(n) for n in re.findall(r"-?\d+(?:\.\d+)?", text or "")]


def colour(text):
    """(r, g, b) of "#rrggbb"; None for anything else ("none", a missing attribute)."""
    if not text or not re.fullmatch(r"#[0-9a-fA-F]{6}", text):
        return None
    return tuple(int(text[i:i + 2], 16) for i in (1, 3, 5))


def painted_box(group):
    """The box in points of what a shape group paints and the colours it paints with; None when
    it paints nothing."""
    xs, ys, colours = [], [], set()
    for element in group.iter():
        tag = element.tag.replace(SVG, "")
        if tag == "g":
            continue
        if tag in ("text", "tspan"):
            if "".join(element.itertext()).strip() and colour(element.get("fill")):
                colours.add(colour(element.get("fill")))
            if tag == "text":
                xs.append(float(element.get("x")))
                ys.append(float(element.get("y")))
            continue
        # A filled outline shows its fill (its outline may match a neighbour's); a line its stroke.
        paint = colour(element.get("fill")) or colour(element.get("stroke"))
        if paint is not None:
            colours.add(paint)
        # The box from whatever geometry the element carries, whatever its kind.
        if element.get("width") is not None:
            x, y = float(element.get("x", 0)), float(element.get("y", 0))
            xs += [x, x + float(element.get("width"))]
            ys += [y, y + float(element.get("height"))]
        elif element.get("cx") is not None:
            cx, cy = float(element.get("cx")), float(element.get("cy"))
            rx = float(element.get("rx", element.get("r", 0)))
            ry = float(element.get("ry", element.get("r", 0)))
            xs += [cx - rx, cx + rx]
            ys += [cy - ry, cy + ry]
        else:
            values = numbers(element.get("points") or element.get("d"))
            xs += values[0::2]
            ys += values[1::2]
    if not colours or not xs:
        return None
    return (min(xs), min(ys), max(xs), max(ys)), colours


def main():
    svg_path, work = sys.argv[1], sys.argv[2]
    os.makedirs(work, exist_ok=True)
    tree = ET.parse(svg_path)
    root = tree.getroot()
    width = int(float(root.get("width").rstrip("pt")) * PIXELS_PER_POINT) + 1
    height = int(float(root.get("height").rstrip("pt")) * PIXELS_PER_POINT) + 1
    layers = {g.get("id"): g for g in root.findall(SVG + "g")}
    shapes = [g for g in layers["shapes"].findall(SVG + "g")]

    whole_png = os.path.join(work, "picture.png")
    screenshot(svg_path, whole_png, width, height, os.path.join(work, "chromium-profile"))
    for group in shapes:
        layers["shapes"].remove(group)
    cells_svg = os.path.join(work, "cells-only.svg")
    tree.write(cells_svg, xml_declaration=True, encoding="UTF-8")
    cells_png = os.path.join(work, "cells-only.png")
    screenshot(cells_svg, cells_png, width, height, os.path.join(work, "chromium-profile"))

    _, _, whole = read_png(whole_png)
    _, _, cells = read_png(cells_png)
    white = (255, 255, 255)
    inked = sum(1 for row in whole for pixel in row if pixel != white)
    coloured = sum(1 for row in cells for (r, g, b) in row if max(r, g, b) - min(r, g, b) > 40)
    dark = sum(1 for row in cells for pixel in row if max(pixel) < 80)
    status = 0
    print(f"picture {width} x {height} px: {inked} pixels drawn, the cells alone {dark} dark "
          f"(text, borders) and {coloured} coloured (fills)")
    if inked < width * height // 50:
        print("FAIL: the picture is (nearly) empty")
        status = 1
    if dark == 0 or coloured == 0:
        print("FAIL: the cells show no text or no fills")
        status = 1

    drawn = missing = 0
    for group in shapes:
        painted = painted_box(group)
        if painted is None:
            continue  # an invisible shape, such as the frame under a shaped summary bar
        box, colours = painted
        left, top, right, bottom = (int(v * PIXELS_PER_POINT) for v in box)
        # Drawn: somewhere in its box the browser shows one of the shape's own colours where the
        # picture without shapes shows something else.
        shown = False
        for y in range(max(top - 2, 0), min(bottom + 3, len(whole))):
            for x in range(max(left - 2, 0), min(right + 3, len(whole[y]))):
                pixel = whole[y][x]
                if pixel != cells[y][x] and any(
                        max(abs(a - b) for a, b in zip(pixel, c)) <= 24 for c in colours):
                    shown = True
                    break
            if shown:
                break
        if not shown:
            print(f"FAIL: shape '{group.get('data-name')}' at {box} is not drawn")
            missing += 1
        else:
            drawn += 1
    print(f"{drawn} shapes drawn by the browser, {missing} missing")
    if drawn == 0:
        print("FAIL: the picture shows no shapes")
        status = 1
    if missing:
        status = 1
    print("ok   the browser shows the picture with every shape" if status == 0 else
          f"(pictures: {whole_png}, {cells_png})")
    return status


if __name__ == "__main__":
    sys.exit(main())
