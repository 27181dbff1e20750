#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <QVector>

/// A text of very many lines that nobody lays out whole: it tells how many there are and hands out a few of
/// them. Lines end as in a text area: Windows and old line ends and Unicode's separators count as "\n",
/// blanks that do not break as blanks. Lives on the UI thread; all costs are at most linear in the text, some
/// ten milliseconds for 200,000 lines.
class LongText : public QObject
{
    Q_OBJECT
    Q_PROPERTY(int lineCount READ lineCount NOTIFY changed)
    Q_PROPERTY(int filledLines READ filledLines NOTIFY changed)
    Q_PROPERTY(int revision READ revision NOTIFY changed)
    Q_PROPERTY(bool tooLong READ isTooLong NOTIFY changed)
    Q_PROPERTY(int partStart READ partStart NOTIFY partChanged)
    Q_PROPERTY(int partCount READ partCount NOTIFY partChanged)

public:
    explicit LongText(QObject* parent = nullptr) : QObject(parent) {}

    Q_INVOKABLE QString text() const { return m_text; }
    /// At least one: an empty text is one empty line.
    int lineCount() const { return m_lineEnds.size(); }
    /// The same without an empty line behind the last line break.
    int filledLines() const { return lineCount() - (m_text.isEmpty() || m_text.endsWith(u'\n') ? 1 : 0); }
    /// Another one after each change, for what depends on the text.
    int revision() const { return m_revision; }
    /// Whether a text area should not show the text.
    bool isTooLong() const { return !fits(m_text.size(), lineCount()); }
    /// Whether a text area may show @p shown, of @p shownLines lines, with @p added in it.
    Q_INVOKABLE bool fitsWith(const QString& shown, int shownLines, const QString& added) const;

    /// Lines @p first (from 0) to @p first + @p count, exclusive, as far as there are any.
    Q_INVOKABLE QStringList lines(int first, int count) const;
    /// Where line @p line starts; a line behind the last one ends the text.
    Q_INVOKABLE int startOf(int line) const;

    /// At most @p most lines around line @p line, as many as a text area may show, which are the open part
    /// from then on. None where that line alone is too long.
    Q_INVOKABLE QString openPart(int line, int most);
    /// Puts @p text in the place of the open part; does nothing where that is its text already.
    Q_INVOKABLE void closePart(const QString& text);
    /// The open part: its first line and the number of them, 0 without one.
    int partStart() const { return m_partStart; }
    int partCount() const { return m_partCount; }

    /// Begins anew with @p text; there is nothing to undo.
    Q_INVOKABLE void reset(const QString& text);
    /// Puts @p text in the place of @p length characters from @p position on, both cut to what there is.
    Q_INVOKABLE void replace(int position, int length, const QString& text);
    /// Takes back the last replace(), once; nothing without one.
    Q_INVOKABLE void undo();
    /// Does again what undo() took back, unless the text changed since.
    Q_INVOKABLE void redo();

signals:
    void changed();
    void partChanged();

private:
    /// A replacement that turns the text back.
    struct Step {
        int position = 0;
        int length = 0;
        QString text;
        bool possible = false;
    };

    static bool fits(int length, int lines);
    /// Where the open part ends, without the line break behind it.
    int partEnd() const { return m_lineEnds[m_partStart + m_partCount - 1]; }
    QString partText() const;
    /// Carries out @p step and makes it the one that turns it back.
    void apply(Step* step);

    QString m_text;
    /// Position behind each line, without its line break.
    QVector<int> m_lineEnds{0};
    int m_revision = 0;
    int m_partStart = 0;
    int m_partCount = 0;
    Step m_undo;
    Step m_redo;
};
