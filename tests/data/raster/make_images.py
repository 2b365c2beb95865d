#!/usr/bin/python3
"""Makes the images here with Pillow, ImageMagick and netpbm: PICTURE-KIND.FORMAT holds PICTURE, whose pixels stand in
PICTURE.rgba (width and height as 16-bit words, then red, green, blue, alpha from the top)."""
import random
import struct
import subprocess
from PIL import Image

random.seed(8)
W, H = 37, 23
COLORS = [(0, 0, 0), (250, 12, 7), (1, 200, 99), (3, 5, 240), (255, 255, 0), (64, 96, 160), (255, 255, 255), (128, 0, 77),
          (13, 17, 19), (200, 201, 202), (90, 60, 30)]


def save(name, width, height, pixels):
    image = Image.new("RGBA", (width, height))
    image.putdata(pixels)
    with open(name + ".rgba", "wb") as out:
        out.write(struct.pack("<HH", width, height) + image.tobytes())
    return image


def indexed(pixels, colors, width=W, height=H):
    image = Image.new("P", (width, height))
    image.putdata(pixels)
    image.putpalette([c for color in colors for c in color])
    return image


def run(command, **more):
    subprocess.run(command, shell=True, check=True, stderr=subprocess.DEVNULL, **more)


few_indexes = [(x // 5 + y // 4 * 3 + (x * y) % 7 // 6) % len(COLORS) for y in range(H) for x in range(W)]
few = save("few", W, H, [COLORS[i] + (255,) for i in few_indexes]).convert("RGB")
few_p = indexed(few_indexes, COLORS)
key = save("key", W, H, [COLORS[i] + (255,) if i != 5 else (0, 0, 0, 0) for i in few_indexes])
bw_bits = [(x * x + y * 3) % 11 < 4 for y in range(H) for x in range(W)]
bw = save("bw", W, H, [(255,) * 4 if b else (0, 0, 0, 255) for b in bw_bits]).convert("1", dither=0)
true = save("true", W, H, [(x * 6, y * 11, random.randrange(256), 255) for y in range(H) for x in range(W)]).convert("RGB")
alpha = save("alpha", W, H, [(x * 6, y * 11, (x * y) % 256, 1 + (x + y) % 255) for y in range(H) for x in range(W)])
grey_values = [(x * 7 + y * 5) % 256 for y in range(H) for x in range(W)]
grey = save("grey", W, H, [(v, v, v, 255) for v in grey_values]).convert("L")
quarter = save("quarter", W, H, [(v // 64 * 85,) * 3 + (255,) for v in grey_values]).convert("L")
NW, NH = 97, 79
noise_indexes = [random.randrange(256) if y % 3 else 7 for y in range(NH) for x in range(NW)]
noise_colors = [((i * 37) % 256, (i * 91) % 256, i) for i in range(256)]
save("noise", NW, NH, [noise_colors[i] + (255,) for i in noise_indexes])
noise_p = indexed(noise_indexes, noise_colors, NW, NH)
for name, image in (("few", few), ("bw", bw), ("true", true), ("grey", grey)):
    image.save("/tmp/%s.ppm" % name)

few_p.save("few-8.bmp")
bw.save("bw-1.bmp")
true.save("true-24.bmp")
alpha.save("alpha-32.bmp")
run("ppmtobmp -bpp=4 /tmp/few.ppm > few-4.bmp")
run("ppmtobmp -os2 -bpp=8 /tmp/few.ppm > few-core.bmp")
run("convert few-8.bmp -compress RLE BMP3:few-rle8.bmp")
few_p.save("/tmp/few.png")
alpha.save("/tmp/alpha.png")
run("convert /tmp/alpha.png BMP:alpha-v5.bmp")

few_p.save("key-5.gif", transparency=5, interlace=0)
few_p.save("key-interlaced.gif", transparency=5, interlace=1)
noise_p.save("/tmp/noise.png")
run("convert /tmp/noise.png noise-256.gif")
run("convert /tmp/noise.png -interlace GIF noise-interlaced.gif")

few_p.save("few-palette.png")
few_p.save("key-palette.png", transparency=5)
few.save("key-rgb.png", transparency=COLORS[5])
true.save("true-rgb.png")
alpha.save("alpha-rgba.png")
bw.save("bw-1.png")
grey.save("grey-8.png")
run("convert -interlace PNG /tmp/alpha.png alpha-interlaced.png")
run("convert -interlace PNG /tmp/few.png -type Palette few-interlaced.png")
run("convert /tmp/alpha.png -depth 16 -define png:bit-depth=16 alpha-16.png")
run("convert /tmp/grey.ppm -depth 16 -define png:bit-depth=16 -define png:color-type=0 grey-16.png")
quarter.save("/tmp/quarter.pgm")
run("pnmtopng /tmp/quarter.pgm > quarter-2.png")

few_p.save("few-8.pcx")
bw.save("bw-1.pcx")
true.save("true-24.pcx")
grey.save("grey-8.pcx")
run("ppmtopcx /tmp/few.ppm > few-planes.pcx")
run("ppmtopcx -packed /tmp/few.ppm > few-packed.pcx")
run("ppmtopcx -24bit /tmp/true.ppm > true-24bit.pcx")
