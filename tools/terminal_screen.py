"""Emulates a terminal's screen: the subset of xterm that current programs use."""
import codecs
import dataclasses
import re
import unicodedata

SEQUENCE = re.compile(
    "\x1b(?:"
    "\\[(?P<private>[<-?]?)(?P<numbers>[0-9;:]*)[ -/]*(?P<final>[@-~])"  # CSI
    "|\\](?P<command>[^\x07\x1b]*)(?:\x07|\x1b\\\\)"  # OSC
    "|[ -/]+[0-~]"  # character sets
    "|(?P<simple>[0-Z\\\\^-~]))")
UNFINISHED = re.compile("\x1b(?:\\[[0-?]*[ -/]*|\\][^\x07\x1b]*\x1b?|[ -/]*)?$")


@dataclasses.dataclass(frozen=True)
class Look:
    """The attributes of a character. Colors: None for the default, 0 to 255, or (red, green, blue)."""
    foreground: object = None
    background: object = None
    bold: bool = False
    dim: bool = False
    italic: bool = False
    underline: bool = False
    reverse: bool = False


@dataclasses.dataclass(frozen=True)
class Cell:
    text: str = " "  # empty for the second half of a wide character
    look: Look = Look()


def width_of(character):
    if unicodedata.combining(character) or unicodedata.category(character) in ("Mn", "Me", "Cf"):
        return 0
    return 2 if unicodedata.east_asian_width(character) in "WF" else 1


class TerminalScreen:
    def __init__(self, rows, columns):
        self._decoder = codecs.getincrementaldecoder("utf-8")("replace")
        self._rest = ""
        self._saved = (0, 0)
        self._main = None
        self.cursor_shown = True
        self.commands = []  # OSC commands: titles, shell marks
        self.look = Look()
        self.resize(rows, columns, fresh=True)

    def resize(self, rows, columns, fresh=False):
        """Resizes the screen and keeps its contents in place."""
        old = [] if fresh else self.cells
        self.rows, self.columns = rows, columns
        self.cells = [self._blank_row() for _ in range(rows)]
        for target, line in zip(self.cells, old):
            target[:min(columns, len(line))] = line[:columns]
        self.row, self.column = (0, 0) if fresh else (min(self.row, rows - 1), min(self.column, columns - 1))
        self._top, self._bottom = 0, rows - 1

    @property
    def alternate(self):
        """Returns whether a program uses the alternate screen."""
        return self._main is not None

    def lines(self):
        return ["".join(cell.text for cell in line).rstrip() for line in self.cells]

    def text(self):
        return "\n".join(self.lines()).rstrip("\n")

    def feed(self, data):
        text = self._rest + self._decoder.decode(data)
        at = 0
        while at < len(text):
            if text[at] != "\x1b":
                self._character(text[at])
                at += 1
                continue
            found = SEQUENCE.match(text, at)
            if not found and UNFINISHED.match(text, at):
                break
            at = found.end() if found else at + 1
            if found:
                self._sequence(found)
        self._rest = text[at:]

    # Output

    def _character(self, character):
        if character == "\r":
            self.column = 0
        elif character == "\n":
            self._line_feed()
        elif character == "\b":
            self.column = max(0, self.column - 1)
        elif character == "\t":
            self.column = min(self.columns - 1, (self.column // 8 + 1) * 8)
        elif character >= " " and character != "\x7f":
            self._print(character)

    def _print(self, character):
        width = width_of(character)
        line = self.cells[self.row]
        if width == 0:
            before = max(0, self.column - 1)
            before -= 1 if before and not line[before].text else 0
            line[before] = dataclasses.replace(line[before], text=line[before].text + character)
            return
        if self.column + width > self.columns:
            self.column = 0
            self._line_feed()
            line = self.cells[self.row]
        line[self.column] = Cell(character, self.look)
        if width == 2:
            line[self.column + 1] = Cell("", self.look)
        self.column += width
        self._last = character

    def _line_feed(self):
        if self.row == self._bottom:
            self._scroll(self._top, 1)
        else:
            self.row = min(self.row + 1, self.rows - 1)

    def _blank_row(self):
        blank = Cell(" ", Look(background=self.look.background))
        return [blank] * self.columns

    def _scroll(self, top, count):
        """Scrolls the lines from TOP to the end of the region up, or down if COUNT is negative."""
        for _ in range(abs(count)):
            if count > 0:
                del self.cells[top]
                self.cells.insert(self._bottom, self._blank_row())
            else:
                del self.cells[self._bottom]
                self.cells.insert(top, self._blank_row())

    def _clear(self, row, begin, end):
        self.cells[row][begin:end] = self._blank_row()[begin:end]

    def _sequence(self, found):
        if found["final"]:
            numbers = [int(number or 0) for number in re.split("[;:]", found["numbers"])]
            if found["private"] == "?":
                self._mode(numbers, found["final"])
            elif not found["private"]:
                self._control(found["final"], numbers)
        elif found["command"] is not None:
            self.commands.append(found["command"])
        elif found["simple"]:
            self._simple(found["simple"])

    def _simple(self, final):
        if final == "7":
            self._saved = (self.row, self.column)
        elif final == "8":
            self.row, self.column = self._saved
        elif final == "M":
            if self.row == self._top:
                self._scroll(self._top, -1)
            else:
                self.row = max(0, self.row - 1)

    def _mode(self, numbers, final):
        if 25 in numbers:
            self.cursor_shown = final == "h"
        if 1049 not in numbers:
            return
        if final == "h" and self._main is None:
            self._main = (self.cells, self.row, self.column)
            self.cells = [self._blank_row() for _ in range(self.rows)]
        elif final == "l" and self._main is not None:
            cells, row, column = self._main
            self._main = None
            self.cells = cells
            self.row, self.column = row, column
            self.resize(self.rows, self.columns)

    def _control(self, final, numbers):
        count = max(1, numbers[0])
        second = max(1, numbers[1]) if len(numbers) > 1 else 1
        line = self.cells[self.row]
        moves = {"A": (-count, 0), "B": (count, 0), "C": (0, count), "D": (0, -count)}
        if final in moves:
            self._go(self.row + moves[final][0], self.column + moves[final][1])
        elif final in "Hf":
            self._go(count - 1, second - 1)
        elif final == "G":
            self._go(self.row, count - 1)
        elif final == "d":
            self._go(count - 1, self.column)
        elif final == "m":
            self._select_look(numbers)
        elif final in "JK":
            self._erase(final, numbers[0])
        elif final == "X":
            self._clear(self.row, self.column, min(self.columns, self.column + count))
        elif final == "@":
            line[self.column:] = (self._blank_row()[:count] + line[self.column:])[:self.columns - self.column]
        elif final == "P":
            line[self.column:] = (line[self.column + count:] + self._blank_row())[:self.columns - self.column]
        elif final == "b":
            for _ in range(count):
                self._print(self._last)
        else:
            self._region(final, numbers, count)

    def _region(self, final, numbers, count):
        if final == "r":
            last = numbers[1] if len(numbers) > 1 and numbers[1] else self.rows
            self._top, self._bottom = max(1, numbers[0]) - 1, last - 1
            self._go(0, 0)
        elif final == "L":
            self._scroll(self.row, -count)
        elif final == "M":
            self._scroll(self.row, count)
        elif final == "S":
            self._scroll(self._top, count)
        elif final == "T":
            self._scroll(self._top, -count)

    def _go(self, row, column):
        self.row = min(max(0, row), self.rows - 1)
        self.column = min(max(0, column), self.columns - 1)

    def _erase(self, final, which):
        begin = 0 if which else self.column
        end = min(self.columns, self.column + 1) if which == 1 else self.columns
        self._clear(self.row, begin, end)
        if final == "J":
            above = range(0, self.row) if which else range(0)
            below = range(self.row + 1, self.rows) if which != 1 else range(0)
            for row in [*above, *below]:
                self._clear(row, 0, self.columns)

    def _select_look(self, numbers):
        flags = {1: "bold", 2: "dim", 3: "italic", 4: "underline", 7: "reverse"}
        ends = {22: ("bold", "dim"), 23: ("italic",), 24: ("underline",), 27: ("reverse",)}
        queue = list(numbers)
        while queue:
            code = queue.pop(0)
            if code == 0:
                self.look = Look()
            elif code in flags:
                self.look = dataclasses.replace(self.look, **{flags[code]: True})
            elif code in ends:
                self.look = dataclasses.replace(self.look, **dict.fromkeys(ends[code], False))
            else:
                self._select_color(code, queue)

    def _select_color(self, code, queue):
        part = "foreground" if code in (*range(30, 40), *range(90, 98)) else "background"
        base = code - (10 if part == "background" else 0)
        if base == 38:
            kind = queue.pop(0) if queue else 0
            color = tuple(queue[:3]) if kind == 2 else (queue[0] if queue else None)
            del queue[:3 if kind == 2 else 1]
        elif 30 <= base <= 37:
            color = base - 30
        elif 90 <= base <= 97:
            color = base - 82
        elif base == 39:
            color = None
        else:
            return
        self.look = dataclasses.replace(self.look, **{part: color})
