#!/usr/bin/env python3
"""Tests the terminal emulator of the recordings, and its drawing."""
import os
import sys
import unittest
import xml.dom.minidom

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))

from terminal_picture import CELL_WIDTH, Film, draw_line
from terminal_screen import Look, TerminalScreen


def screen_after(*pieces, rows=4, columns=10):
    screen = TerminalScreen(rows, columns)
    for piece in pieces:
        screen.feed(piece if isinstance(piece, bytes) else piece.encode())
    return screen


class AScreen(unittest.TestCase):
    def shows(self, screen, *lines):
        self.assertEqual(screen.text(), "\n".join(lines))

    def test_wraps_and_scrolls(self):
        self.shows(screen_after("0123456789ab\r\nc\r\nd\r\ne\r\nf"), "c", "d", "e", "f")

    def test_wide_characters_occupy_two_columns_and_combining_ones_none(self):
        screen = screen_after("周x", "e\u0301y")
        self.shows(screen, "周xe\u0301y")
        self.assertEqual(screen.column, 5)

    def test_moves_and_erases(self):
        self.shows(screen_after("abc\033[2;3Hx\033[1;2H\033[K"), "a", "  x")
        self.shows(screen_after("abc\033[2Jd"), "   d")
        self.shows(screen_after("abcdef\033[1;2H\033[2P\033[1@"), "a def")
        self.shows(screen_after("a\r\nb\r\nc\033[2;4r\033[2;1H\033[M"), "a", "c")
        self.shows(screen_after("-\033[4b"), "-----")

    def test_accepts_bytes_in_any_chunks(self):
        whole = "周\033[31mred\033[0m".encode()
        for cut in range(len(whole)):
            screen = screen_after(whole[:cut], whole[cut:])
            self.shows(screen, "周red")
            self.assertEqual(screen.cells[0][2].look, Look(foreground=1))

    def test_has_an_alternate_screen(self):
        screen = screen_after("shell\033[?1049h\033[?25l\033[Hprogram")
        self.shows(screen, "program")
        self.assertTrue(screen.alternate)
        self.assertFalse(screen.cursor_shown)
        screen.feed(b"\033[?1049l\033[?25h")
        self.shows(screen, "shell")
        self.assertTrue(screen.cursor_shown)

    def test_tracks_attributes(self):
        look = screen_after("\033[1;7;38;5;208;48;2;1;2;3mx").cells[0][0].look
        self.assertEqual(look, Look(foreground=208, background=(1, 2, 3), bold=True, reverse=True))

    def test_keeps_its_contents_on_resize(self):
        screen = screen_after("ab\r\ncd")
        screen.resize(1, 1)
        self.shows(screen, "a")
        screen.resize(4, 10)
        screen.feed(b"x")
        self.shows(screen, "x")

    def test_records_shell_marks(self):
        self.assertEqual(screen_after("\033]133;A\007$ ").commands, ["133;A"])


class APicture(unittest.TestCase):
    def test_positions_every_wide_character(self):
        drawn = draw_line(screen_after("a周杰b").cells[0])
        self.assertIn(f'x="{CELL_WIDTH:g} {CELL_WIDTH * 3:g}"', drawn)
        self.assertIn(f'x="{CELL_WIDTH * 5:g}" textLength="{CELL_WIDTH:g}"', drawn)

    def test_preserves_wide_gaps(self):
        self.assertIn(f'x="{CELL_WIDTH * 5:g}"', draw_line(screen_after("a    b").cells[0]))

    def test_is_well_formed_for_any_content(self):
        film = Film("a & b", 4, 10)
        screen = screen_after("<&>\"'")
        film.take(screen, 1)
        film.choose_poster()
        screen.feed(b"\r\n\033[7mmore")
        film.take(screen, 1)
        picture = xml.dom.minidom.parseString(film.svg())
        self.assertEqual(picture.getElementsByTagName("title")[0].firstChild.data, "a & b")
        self.assertEqual(film.frame_count(), 2)

    def test_draws_an_unchanged_screen_once(self):
        film = Film("", 4, 10)
        screen = screen_after("a")
        film.take(screen, 1)
        film.take(screen, 2)
        self.assertEqual(film.frame_count(), 1)


if __name__ == "__main__":
    unittest.main(verbosity=2)
