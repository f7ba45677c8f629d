#include "browse/frame.h"

#include <algorithm>

#include "browse/frame_parts.h"
#include "output/text.h"

namespace ctl::browse
{
namespace
{
constexpr int kMargin = 2;
constexpr int kReadingGap = 3;
constexpr int kMinColumnsForReading = 40;

struct ListArea
{
    const Model& model;
    int columns;        // without the scroll bar
    int readingColumn;  // 0 if the screen is too narrow
};

std::string NameOf(const Model& model, int entry)
{
    const std::string* const name = model.Current().names.At(entry);
    if (name == nullptr) return "\xC2\xB7";
    return CellText(*name) + (model.Current().folders ? "/" : "");
}

std::string ReadingOf(const Model& model, int entry)
{
    const std::string* const name = model.Current().names.At(entry);
    if (name == nullptr || !model.Current().index || !IsForeign(*name)) return {};
    return model.Current().index->Reading(entry);
}

int WidestName(const Model& model)
{
    int widest = 0;
    const int top = model.Cursor().top;
    for (int row = top; row < std::min(top + model.Height(), model.Rows()); ++row)
        widest = std::max(widest, Width(NameOf(model, model.EntryAt(row))));
    return widest;
}

ListArea ListAreaFor(const Model& model, int columns)
{
    const int text = columns - 1;
    const int beside = kMargin + std::min(WidestName(model), text * 3 / 5) + kReadingGap;
    return {model, text, columns >= kMinColumnsForReading ? beside : 0};
}

Line EntryLine(const ListArea& area, int entry, bool selected)
{
    const std::string name = NameOf(area.model, entry);
    const std::string reading = area.readingColumn > 0 ? ReadingOf(area.model, entry) : std::string();
    const int room = (reading.empty() ? area.columns : area.readingColumn - 1) - kMargin;
    const std::string text = Pad(std::string(kMargin, ' ') + Cut(name, room), area.columns);
    return {
        {0, text, selected ? Style::Selected : Style::Plain},
        {area.readingColumn, Cut(reading, area.columns - area.readingColumn), selected ? Style::Selected : Style::Dim}};
}

void AddScrollBar(Frame& list, const Model& model, int columns)
{
    const int height = static_cast<int>(list.size());
    const int count = model.Rows();
    if (count <= height || columns < 3) return;
    const int size = std::max(1, static_cast<int>(static_cast<long long>(height) * height / count));
    const int room = std::max(1, count - height);
    const int first = static_cast<int>(static_cast<long long>(model.Cursor().top) * (height - size) / room);
    for (int row = first; row < std::min(height, first + size); ++row)
        list[static_cast<std::size_t>(row)].push_back({columns - 1, "\xE2\x94\x83", Style::Dim});
}

Frame ListLines(const Model& model, int height, int columns)
{
    Frame lines(static_cast<std::size_t>(height));
    const ListArea area = ListAreaFor(model, columns);
    const ListCursor& cursor = model.Cursor();
    for (int row = 0; row < height; ++row)
    {
        const int entry = model.EntryAt(cursor.top + row);
        if (entry >= 0) lines[static_cast<std::size_t>(row)] = EntryLine(area, entry, cursor.top + row == cursor.at);
    }
    if (model.Rows() == 0) lines.front() = EmptyLine(model);
    AddScrollBar(lines, model, columns);
    return lines;
}

// Cuts spans at the right edge and drops those outside.
Line Clipped(const Line& line, int columns)
{
    Line clipped;
    for (const Span& span : line)
        if (span.column >= 0 && span.column < columns && !span.text.empty())
            clipped.push_back({span.column, Cut(span.text, columns - span.column), span.style});
    return clipped;
}
}  // namespace

int ListRows(int rows)
{
    return rows >= 4 ? rows - 3 : 1;
}

Frame Draw(const Model& model, int rows, int columns, Time now)
{
    const int height = ListRows(rows);
    Frame frame = model.Help() ? HelpLines(*model.Help(), height, columns) : ListLines(model, height, columns);
    if (rows >= 4) frame.insert(frame.begin(), TitleLine(model, columns));
    if (rows >= 3) frame.push_back(PlayingLine(model, columns, now));
    if (rows >= 2) frame.push_back(FootLine(model, columns, now));
    for (Line& line : frame) line = Clipped(line, columns);
    return frame;
}
}  // namespace ctl::browse
