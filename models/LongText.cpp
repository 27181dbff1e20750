#include "models/LongText.h"

#include <algorithm>
#include <utility>

namespace {

// What a text area lays out in well under a tenth of a second.
constexpr int kLinesShown = 1000;
constexpr int kCharactersShown = 200000;

bool breaksLine(QChar character)
{
    switch (character.unicode()) {
    case u'\n':
    case u'\r':
    case QChar::LineSeparator:
    case QChar::ParagraphSeparator:
        return true;
    default:
        return false;
    }
}

/// As a text area would have it.
QString normalized(QString text)
{
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    for (QChar& character : text) {
        if (breaksLine(character))
            character = u'\n';
        else if (character == QChar::Nbsp)
            character = u' ';
    }
    return text;
}

} // namespace

bool LongText::fits(int length, int lines)
{
    return length <= kCharactersShown && lines <= kLinesShown;
}

bool LongText::fitsWith(const QString& shown, int shownLines, const QString& added) const
{
    // Windows' line ends count twice, which is near enough.
    const auto breaks = std::count_if(added.begin(), added.end(), breaksLine);
    return fits(shown.size() + added.size(), shownLines + int(breaks));
}

QStringList LongText::lines(int first, int count) const
{
    QStringList found;
    const int last = std::min(first + count, lineCount());
    for (int line = std::max(first, 0); line < last; ++line) {
        const int start = startOf(line);
        found << m_text.mid(start, m_lineEnds[line] - start);
    }
    return found;
}

int LongText::startOf(int line) const
{
    if (line <= 0)
        return 0;
    return line < lineCount() ? m_lineEnds[line - 1] + 1 : m_text.size();
}

QString LongText::partText() const
{
    return m_partCount == 0 ? QString() : m_text.mid(startOf(m_partStart), partEnd() - startOf(m_partStart));
}

QString LongText::openPart(int line, int most)
{
    line = std::clamp(line, 0, lineCount() - 1);
    for (m_partCount = std::min({most, kLinesShown, lineCount()}); m_partCount > 0; m_partCount /= 2) {
        m_partStart = std::clamp(line - m_partCount / 2, 0, lineCount() - m_partCount);
        if (fits(partEnd() - startOf(m_partStart), m_partCount))
            break;
    }
    emit partChanged();
    return partText();
}

void LongText::closePart(const QString& text)
{
    if (m_partCount == 0)
        return;
    if (text != partText())
        replace(startOf(m_partStart), partEnd() - startOf(m_partStart), text);
    m_partCount = 0;
    emit partChanged();
}

void LongText::reset(const QString& text)
{
    replace(0, m_text.size(), text);
    m_undo = {};
}

void LongText::replace(int position, int length, const QString& text)
{
    m_undo = {position, length, normalized(text), true};
    m_redo = {};
    apply(&m_undo);
}

void LongText::undo()
{
    if (!m_undo.possible)
        return;
    m_redo = std::exchange(m_undo, {});
    apply(&m_redo);
}

void LongText::redo()
{
    if (!m_redo.possible)
        return;
    m_undo = std::exchange(m_redo, {});
    apply(&m_undo);
}

void LongText::apply(Step* step)
{
    step->position = std::clamp(step->position, 0, m_text.size());
    step->length = std::clamp(step->length, 0, m_text.size() - step->position);
    const QString removed = m_text.mid(step->position, step->length);
    m_text.replace(step->position, step->length, step->text);
    step->length = step->text.size();
    step->text = removed;

    m_lineEnds.clear();
    for (int end = m_text.indexOf(u'\n'); end >= 0; end = m_text.indexOf(u'\n', end + 1))
        m_lineEnds.append(end);
    m_lineEnds.append(m_text.size());
    ++m_revision;
    emit changed();
}
