#!/usr/bin/env python3
"""Writes folders of tiny, silent MP3 files with tags; their headers can declare any duration.

Usage: music_folder.py FOLDER [--tracks N]

Without --tracks, writes a small collection with names in several scripts; with it, N tracks with invented names.
"""
import argparse
import os
import struct

# MPEG 1, layer III, 32 kbit/s, 44.1 kHz, mono: 104 bytes and 1152 samples per frame.
HEADER = b"\xff\xfb\x10\xc4"
FRAME = HEADER + bytes(100)
SAMPLES_PER_FRAME, SAMPLE_RATE = 1152, 44100
SIDE_INFORMATION = 17

COLLECTION = [
    ("周明轩", "秋林序", "Pop", [("秋林序", 299), ("渡口", 260), ("晚坪", 244), ("清浅", 238), ("花灯会", 254)]),
    ("周明轩", "梦境里", "Pop", [("东溪", 223), ("半首歌的光景", 253), ("竹亭记", 254), ("未寄的信", 256)]),
    ("Nadia Brandt", "Lanterns", "Jazz", [("Blue Lantern", 254), ("Slow Ferry", 301), ("Rain on Copper", 238)]),
    ("Harbour Quartet", "Tide Tables", "Classical", [("Low Water", 276), ("Slack Tide", 193), ("Spring Tide", 318)]),
    ("The Paper Kites of Mill Road", "Second Wind", "Rock", [("Second Wind", 229), ("Gravel", 184)]),
    ("Élodie Rouvière", "Été à vélo", "Electronic", [("Été à vélo", 211), ("Ligne 6", 233)]),
    ("曾雨桐", "江南小雨", "Folk", [("江南小雨", 218), ("山间清晨", 195), ("乌篷船", 241)]),
    ("单晓岚", "长夜里的音乐", "Pop", [("长夜里的音乐", 204), ("单身的夜", 187)]),
    ("解思远", "月下独行", "Folk", [("月下独行", 263), ("竹林深处", 232)]),
    ("Анна Вершинина", "Северный ветер", "Folk", [("Северный ветер", 246), ("Утро", 198)]),
    ("מיה לביא", "אור ראשון", "Pop", [("אור ראשון", 221), ("דרך הים", 207)]),
    ("Midori & the Foxes 🦊", "夜の電車", "Electronic", [("夜の電車", 268), ("Neon 🌃", 231)]),
]


def text_frame(name, text):
    body = b"\x01" + text.encode("utf-16")
    return name + struct.pack(">IH", len(body), 0) + body


def tag(title, artist, album, genre, number):
    frames = b"".join(text_frame(name, text) for name, text in (
        (b"TIT2", title), (b"TPE1", artist), (b"TALB", album), (b"TCON", genre), (b"TRCK", str(number))))
    size = bytes(len(frames) >> shift & 0x7F for shift in (21, 14, 7, 0))
    return b"ID3\x03\x00\x00" + size + frames


def audio(seconds):
    """Returns two frames; the header in the first one declares the number of frames for the duration."""
    frames = seconds * SAMPLE_RATE // SAMPLES_PER_FRAME
    says = b"Xing" + struct.pack(">III", 3, frames, frames * len(FRAME))
    first = HEADER + bytes(SIDE_INFORMATION) + says
    return first.ljust(len(FRAME), b"\0") + FRAME


def write_track(path, title, artist, album, genre, number, seconds):
    with open(path, "wb") as file:
        file.write(tag(title, artist, album, genre, number) + audio(seconds))


def write_collection(folder):
    for artist, album, genre, songs in COLLECTION:
        place = os.path.join(folder, album)
        os.makedirs(place)
        for number, (title, seconds) in enumerate(songs, 1):
            write_track(os.path.join(place, f"{number}.mp3"), title, artist, album, genre, number, seconds)


def write_tracks(folder, count):
    """Writes a hundred tracks per album; every tenth title is Chinese."""
    for index in range(count):
        album = f"Album {index // 100:04}"
        place = os.path.join(folder, album)
        if index % 100 == 0:
            os.makedirs(place)
        title = f"晴日 {index:05}" if index % 10 == 0 else f"Track {index:05}"
        write_track(os.path.join(place, f"{index:05}.mp3"), title, f"Artist {index // 500:03}", album, "Pop",
                    index % 100 + 1, 180)


def main():
    parser = argparse.ArgumentParser(description="Writes a folder of tiny MP3 files with tags.")
    parser.add_argument("folder")
    parser.add_argument("--tracks", type=int)
    options = parser.parse_args()
    if options.tracks:
        write_tracks(options.folder, options.tracks)
    else:
        write_collection(options.folder)


if __name__ == "__main__":
    main()
