"""Draws the output of a terminal as an SVG: a strip of frames, one of which is visible at a time."""
import re
from xml.sax.saxutils import escape

CELL_WIDTH, CELL_HEIGHT, FONT_SIZE, BASELINE = 8.4, 18, 14, 13.5
MARGIN, BAR = 14, 34
FONTS = ("ui-monospace, SFMono-Regular, Menlo, Consolas, 'DejaVu Sans Mono', 'Noto Sans Mono CJK SC', "
         "'WenQuanYi Micro Hei Mono', monospace")
PAPER, INK, FRAME = "#10141b", "#d5dbe5", "#1c222c"
PALETTE = ["#20262f", "#f07178", "#a5d76e", "#ffcb6b", "#3d6fd8", "#c792ea", "#6fd3e8", "#d5dbe5",
           "#5c6773", "#ff8b92", "#ddffa7", "#ffe585", "#9cc4ff", "#e1acff", "#a3f7ff", "#ffffff"]
LAST_FRAME = 2.5  # seconds before the animation restarts


def color(value, otherwise):
    if value is None:
        return otherwise
    if isinstance(value, tuple):
        return "#%02x%02x%02x" % value
    if value < 16:
        return PALETTE[value]
    if value >= 232:
        return "#" + "%02x" % (8 + (value - 232) * 10) * 3
    steps = (0, 95, 135, 175, 215, 255)
    value -= 16
    return "#%02x%02x%02x" % (steps[value // 36], steps[value // 6 % 6], steps[value % 6])


def number(value):
    return f"{value:.2f}".rstrip("0").rstrip(".")


def colors_of(look):
    ink, paper = color(look.foreground, INK), color(look.background, PAPER)
    return (paper, ink) if look.reverse else (ink, paper)


def runs(line):
    """Yields runs of adjacent cells with the same look and width: first column, texts, look, and cell width."""
    found = []
    for column, cell in enumerate(line):
        if not cell.text:
            continue
        wide = column + 1 < len(line) and not line[column + 1].text
        last = found[-1] if found else None
        if last and (last[2], last[3]) == (cell.look, wide) and last[0] + len(last[1]) * (1 + wide) == column:
            last[1].append(cell.text)
        else:
            found.append((column, [cell.text], cell.look, wide))
    return found


def draw_text(column, texts, look, wide):
    ink = colors_of(look)[0]
    style = (f' fill="{ink}"' if ink != INK else "") + (' opacity=".62"' if look.dim else "")
    kinds = " ".join(["b"] * look.bold + ["w"] * wide)
    style += f' class="{kinds}"' if kinds else ""
    pieces = draw_wide(column, texts) if wide else draw_narrow(column, texts)
    return "".join(f'<text {place} y="{BASELINE}"{style}>{escape(text)}</text>' for place, text in pieces)


def draw_wide(column, texts):
    """Returns the x coordinate of each character."""
    places = " ".join(number((column + 2 * i) * CELL_WIDTH) for i in range(len(texts)))
    return [(f'x="{places}"', "".join(texts))]


def draw_narrow(column, texts):
    """Returns words with explicit lengths, because the viewer's font may differ. Repeated blanks would collapse."""
    line = "".join(text[0] for text in texts)
    for found in re.finditer(r"[^ ]+(?: [^ ]+)*", line):
        begin, end = found.span()
        yield (f'x="{number((column + begin) * CELL_WIDTH)}" textLength="{number((end - begin) * CELL_WIDTH)}"',
               "".join(texts[begin:end]))


def draw_line(line):
    parts = []
    for column, texts, look, wide in runs(line):
        paper = colors_of(look)[1]
        if paper != PAPER:
            width = len(texts) * (2 if wide else 1) * CELL_WIDTH
            parts.append(f'<rect x="{number(column * CELL_WIDTH)}" width="{number(width + 0.3)}" '
                         f'height="{CELL_HEIGHT + 0.3}" fill="{paper}"/>')
    parts += [draw_text(*run) for run in runs(line)]
    return "".join(parts)


class Film:
    def __init__(self, title, rows, columns):
        self._title = escape(title)
        self._rows, self._columns = rows, columns
        self._frames = []  # [lines, cursor, seconds]
        self._poster = 0
        self._names = {}

    def take(self, screen, seconds):
        """Adds the current screen as a frame with this duration."""
        lines = tuple(draw_line(line) for line in screen.cells)
        cursor = (screen.row, screen.column) if screen.cursor_shown else None
        if self._frames and self._frames[-1][:2] == [lines, cursor]:
            self.lengthen(seconds)
        else:
            self._frames.append([lines, cursor, seconds])

    def lengthen(self, seconds):
        self._frames[-1][2] += seconds

    def choose_poster(self):
        self._poster = len(self._frames) - 1

    def seconds(self):
        return sum(frame[2] for frame in self._frames) + LAST_FRAME

    def frame_count(self):
        return len(self._frames)

    def svg(self):
        width = self._columns * CELL_WIDTH + 2 * MARGIN
        height = self._rows * CELL_HEIGHT + BAR + MARGIN
        strip = "".join(self._draw_frame(index, frame) for index, frame in enumerate(self._frames))
        return (f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {number(width)} {number(height)}" '
                f'width="{number(width)}" height="{number(height)}" font-family="{FONTS}" font-size="{FONT_SIZE}">\n'
                f"<title>{self._title}</title>\n<style>{self._style()}</style>\n<defs>{self._definitions()}</defs>\n"
                f'<rect width="100%" height="100%" rx="10" fill="{PAPER}"/>\n'
                f'<path d="M0 {BAR - 6}V10a10 10 0 0 1 10-10H{number(width - 10)}a10 10 0 0 1 10 10V{BAR - 6}z" '
                f'fill="{FRAME}"/>\n' + self._window_title(width) +
                f'<svg x="{MARGIN}" y="{BAR}" width="{number(self._columns * CELL_WIDTH + 1)}" '
                f'height="{self._rows * CELL_HEIGHT}">\n'
                f'<g id="strip" fill="{INK}" transform="translate(0 {-self._poster * self._height()})">\n{strip}</g>'
                "</svg>\n</svg>\n")

    def _height(self):
        return self._rows * CELL_HEIGHT

    def _window_title(self, width):
        buttons = "".join(f'<circle cx="{18 + 18 * i}" cy="14" r="5" fill="{fill}"/>'
                          for i, fill in enumerate(("#f07178", "#ffcb6b", "#a5d76e")))
        return (f'{buttons}<text x="{number(width / 2)}" y="19" fill="{INK}" opacity=".55" font-size="12" '
                f'text-anchor="middle">{self._title}</text>\n')

    def _style(self):
        total = self.seconds()
        steps, passed = [], 0
        for index, frame in enumerate(self._frames):
            steps.append(f"{passed / total * 100:.3f}%{{transform:translateY({-index * self._height()}px)}}")
            passed += frame[2]
        last = f"100%{{transform:translateY({-(len(self._frames) - 1) * self._height()}px)}}"
        return (".b{font-weight:700}.w{font-size:16px}"
                f"#strip{{animation:roll {total:.2f}s step-end infinite}}"
                "@media(prefers-reduced-motion:reduce){#strip{animation:none}}"
                f"@keyframes roll{{{''.join(steps)}{last}}}")

    def _definitions(self):
        """Defines each line once, however often it is used."""
        for lines, _, _ in self._frames:
            for line in lines:
                if line and line not in self._names:
                    self._names[line] = f"l{len(self._names)}"
        return "".join(f'<g id="{name}">{line}</g>' for line, name in self._names.items())

    def _draw_frame(self, index, frame):
        lines, cursor, _ = frame
        top = index * self._height()
        self._definitions()
        parts = [f'<use href="#{self._names[line]}" y="{top + row * CELL_HEIGHT}"/>'
                 for row, line in enumerate(lines) if line]
        if cursor:
            parts.append(f'<rect x="{number(cursor[1] * CELL_WIDTH)}" y="{top + cursor[0] * CELL_HEIGHT}" '
                         f'width="{CELL_WIDTH}" height="{CELL_HEIGHT}" opacity=".6"/>')
        return "".join(parts) + "\n"
