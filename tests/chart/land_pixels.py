# Land as tiles have it against land as another program rasterised it: land_pixels.py DRAWN BURNT RATIO, raw bytes of an
# image of four bands and of one of one band: 0 sea, 1 land, 2 what land touches. Farther from coasts than their lines are
# wide, each pixel must be what the other says; along them the two must agree as well as with any shift.
import re, sys

header = open(sys.argv[1].replace(".bin", ".hdr")).read()
width, height = (int(re.search(name + r" *= *(\d+)", header).group(1)) for name in ("samples", "lines"))
drawn, burnt = (open(name, "rb").read() for name in sys.argv[1:3])
assert len(drawn) == 4 * width * height and len(burnt) == width * height
reach = 1 + int(sys.argv[3])
far, coast = {0: {}, 1: {}}, []
for y in range(reach, height - reach):
    for x in range(reach, width - reach):
        at = y * width + x
        if not drawn[4 * at + 3]:
            continue
        around = set()
        for j in range(-reach, reach + 1):
            around.update(burnt[at + j * width - reach : at + j * width + reach + 1])
        if len(around) > 1:
            coast.append(at)
        elif around < {0, 1}:
            colours, colour = far[around.pop()], drawn[4 * at : 4 * at + 3]
            colours[colour] = colours.get(colour, 0) + 1
good = True
for what, colours in far.items():
    total, most = sum(colours.values()), max(colours.values(), default=0)
    print(("sea", "land")[what], total, "pixels,", total - most, "of another colour")
    good = good and total > 1000 and total - most <= total // 5000
kinds = {max(colours, key=colours.get): what for what, colours in far.items() if colours}
wrong = {}
for at in coast:
    kind = kinds.get(drawn[4 * at : 4 * at + 3])
    for j in (-1, 0, 1):
        for i in (-1, 0, 1):
            wrong[i, j] = wrong.get((i, j), 0) + (kind is not None and kind != (burnt[at + j * width + i] == 1))
print("along coasts", wrong)
sys.exit(not (good and len(kinds) == 2 and wrong[0, 0] == min(wrong.values())))
