#include "models/ListReader.h"

#include "logging/Log.h"
#include "models/Json.h"
#include "models/LooseJson.h"

#include <simdjson.h>

#include <algorithm>
#include <charconv>

namespace {

namespace dom = simdjson::dom;

/// Elements are parsed together up to this size: enough to be fast, and it stays in a processor's cache.
constexpr std::size_t kSlice = 512 * 1024;
/// The parser takes up to 14 times the bytes.
constexpr std::size_t kLargestPart = 3584 * 1024;
constexpr std::size_t kMostRecords = 1000000;
constexpr std::size_t kDeepest = 1024;
constexpr std::size_t kNowhere = std::string_view::npos;

bool isSpace(char c)
{
    return c == ' ' || c == '\n' || c == '\t' || c == '\r';
}

/// Walks over an answer and parses it in parts. Where a part ends can mostly be guessed: what parses whole
/// from one element's start has ended with an element.
class Reader
{
public:
    Reader(std::string_view answer, const RecordLayout& layout, SnapshotPtr last);

    ListReading read(const AnswerMark& mark);

private:
    bool fail(const char* words);
    bool readEnvelope();
    bool readMember();
    bool readList();
    bool readSlice();
    bool readRecord(dom::object object);
    const RecordLayout::Field* fieldAt(std::size_t position, std::string_view key);
    void readField(const RecordLayout::Field& field, dom::element value);
    void reset(const RecordLayout::Field& field);
    std::string_view textOf(dom::element value, std::string* kept);

    void skipSpace();
    bool take(char c);
    std::size_t endOfText(std::size_t at) const;
    std::size_t endOfValue(std::size_t at);
    std::size_t guessedEnd() const;
    std::size_t foundEnd();
    bool parse(std::string_view part);
    bool parseOrMend(std::string_view part);

    const std::string_view m_answer;
    const RecordLayout& m_layout;
    const SnapshotPtr m_last;
    std::size_t m_at = 0;
    QString m_error;

    dom::parser m_parser;
    std::string m_part;
    dom::array m_elements;

    bool m_success = false;
    QString m_message;
    std::unique_ptr<SnapshotBuilder> m_builder;
    std::size_t m_skipped = 0;

    /// The values of one record, and which fields the last one had, in their order.
    std::vector<std::string_view> m_texts;
    std::vector<std::string> m_numerals;
    std::vector<qint64> m_numbers;
    std::vector<const RecordLayout::Field*> m_expected;
};

Reader::Reader(std::string_view answer, const RecordLayout& layout, SnapshotPtr last)
    : m_answer(answer), m_layout(layout), m_last(std::move(last)), m_texts(layout.texts()),
      m_numerals(layout.texts()), m_numbers(layout.numbers())
{
}

bool Reader::fail(const char* words)
{
    if (m_error.isEmpty())
        m_error = QString::fromLatin1(words);
    return false;
}

// Where parts begin and end

void Reader::skipSpace()
{
    while (m_at < m_answer.size() && isSpace(m_answer[m_at]))
        ++m_at;
}

bool Reader::take(char c)
{
    skipSpace();
    if (m_at >= m_answer.size())
        return fail("The answer is cut");
    if (m_answer[m_at] != c)
        return false;
    ++m_at;
    skipSpace();
    return true;
}

/// Behind the text whose quotation mark stands at @p at.
std::size_t Reader::endOfText(std::size_t at) const
{
    for (++at; at < m_answer.size(); ++at) {
        if (m_answer[at] == '"')
            return at + 1;
        if (m_answer[at] == '\\')
            ++at;
    }
    return kNowhere;
}

/// Behind the value at @p at, as far as quotation marks and brackets tell.
std::size_t Reader::endOfValue(std::size_t at)
{
    std::size_t depth = 0;
    while (at < m_answer.size()) {
        const char c = m_answer[at];
        const bool closes = c == ']' || c == '}';
        if (depth == 0 && (closes || c == ',' || isSpace(c)))
            return at;
        if ((c == '[' || c == '{') && ++depth > kDeepest) {
            fail("The answer is nested too deep");
            return kNowhere;
        }
        depth -= closes;
        at = c == '"' ? endOfText(at) : at + 1;
        if (depth == 0 && (closes || c == '"') && at != kNowhere)
            return at;
    }
    fail("The answer is cut");
    return kNowhere;
}

/// Behind what may be the last object of a slice that begins here.
std::size_t Reader::guessedEnd() const
{
    if (m_answer.size() - m_at <= kSlice)
        return kNowhere;
    const std::string_view around = m_answer.substr(0, std::min(m_answer.size(), m_at + 2 * kSlice));
    for (std::size_t brace = m_at + kSlice; (brace = around.find('}', brace)) != kNowhere; ++brace) {
        std::size_t next = brace + 1;
        while (next < around.size() && isSpace(around[next]))
            ++next;
        if (next < around.size() && around[next] == ',')
            return brace + 1;
    }
    return kNowhere;
}

/// Behind the last element of a slice that begins here.
std::size_t Reader::foundEnd()
{
    const std::size_t start = m_at;
    std::size_t end = kNowhere;
    for (std::size_t at = start;;) {
        const std::size_t next = endOfValue(at);
        if (next == kNowhere)
            return kNowhere;
        if (next == at || next - start > kLargestPart) {
            if (end == kNowhere)
                fail(next == at ? "The answer is no JSON" : "The answer has a record that is too large");
            return end;
        }
        end = at = next;
        while (at < m_answer.size() && isSpace(m_answer[at]))
            ++at;
        if (end - start >= kSlice || at >= m_answer.size() || m_answer[at] != ',')
            return end;
        do
            ++at;
        while (at < m_answer.size() && isSpace(m_answer[at]));
    }
}

/// Parses elements of an array into m_elements.
bool Reader::parse(std::string_view part)
{
    if (part.size() > kLargestPart)
        return fail("The answer has a part that is too large");
    m_part.reserve(part.size() + 2 + simdjson::SIMDJSON_PADDING);
    m_part = '[';
    m_part += part;
    m_part += ']';
    const auto error = m_parser.parse(m_part).get(m_elements);
    if (error == simdjson::UTF8_ERROR)
        return fail("The answer is not UTF-8");
    if (error == simdjson::DEPTH_ERROR)
        return fail("The answer is nested too deep");
    return !error || fail("The answer is no JSON");
}

bool Reader::parseOrMend(std::string_view part)
{
    if (parse(part))
        return true;
    const std::string other = strictJson(part, kLargestPart);
    if (other == part)
        return false;
    m_error.clear();
    return parse(other);
}

// The envelope

bool Reader::readEnvelope()
{
    constexpr std::string_view mark = "\xef\xbb\xbf";
    if (m_answer.substr(0, mark.size()) == mark)
        m_at = mark.size();
    if (!take('{'))
        return fail("The answer is no JSON object");
    if (!take('}')) {
        do {
            if (!readMember())
                return false;
        } while (take(','));
        if (!take('}'))
            return fail("The answer is no JSON");
    }
    return m_at == m_answer.size() || fail("The answer is no JSON");
}

bool Reader::readMember()
{
    if (m_at >= m_answer.size() || m_answer[m_at] != '"')
        return fail(m_at >= m_answer.size() ? "The answer is cut" : "The answer is no JSON");
    const std::size_t keyEnd = endOfText(m_at);
    if (keyEnd == kNowhere)
        return fail("The answer is cut");
    if (!parseOrMend(m_answer.substr(m_at, keyEnd - m_at)))
        return false;
    const std::string key(std::string_view(m_elements.at(0)));
    m_at = keyEnd;
    if (!take(':'))
        return fail("The answer is no JSON");

    if (key == "data") {
        m_builder.reset();
        if (m_at < m_answer.size() && m_answer[m_at] == '[')
            return readList();
    }
    const std::size_t end = endOfValue(m_at);
    if (end == kNowhere || !parseOrMend(m_answer.substr(m_at, end - m_at)))
        return false;
    if (m_elements.size() != 1)
        return fail("The answer is no JSON");
    m_at = end;
    const dom::element value = m_elements.at(0);
    if (key == "success") {
        m_success = value.is_bool() && bool(value);
    } else if (key == "message") {
        const std::string_view text = value.is_string() ? std::string_view(value) : std::string_view();
        m_message = QString::fromUtf8(text.data(), static_cast<int>(text.size()));
    }
    return true;
}

// The list

bool Reader::readList()
{
    m_builder = std::make_unique<SnapshotBuilder>(m_layout, m_last);
    m_skipped = 0;
    take('[');
    if (take(']'))
        return true;
    do {
        const std::size_t guessed = guessedEnd();
        std::size_t end = guessed;
        if (guessed == kNowhere || !parse(m_answer.substr(m_at, guessed - m_at))) {
            m_error.clear();
            end = foundEnd();
            if (end == kNowhere || !parseOrMend(m_answer.substr(m_at, end - m_at)))
                return false;
        }
        if (!readSlice())
            return false;
        m_at = end;
    } while (take(','));
    if (!take(']'))
        return fail("The answer is no JSON");
    if (m_builder->size() == 0)
        return fail("The list holds no object");
    if (m_skipped > 0)
        LOG_D << "elements that are no objects: " << quint64(m_skipped);
    return true;
}

bool Reader::readSlice()
{
    for (const dom::element element : m_elements) {
        if (!element.is_object())
            ++m_skipped;
        else if (!readRecord(dom::object(element)))
            return false;
    }
    return true;
}

bool Reader::readRecord(dom::object object)
{
    if (m_builder->size() == kMostRecords)
        return fail("The list has more than 1,000,000 records");
    for (const RecordLayout::Field& field : m_layout.fields())
        reset(field);
    std::size_t position = 0;
    for (const dom::key_value_pair member : object) {
        const auto* const field = fieldAt(position++, member.key);
        if (!field)
            continue;
        if (field->kind != RecordLayout::Group) {
            readField(*field, member.value);
            continue;
        }
        for (const RecordLayout::Field& inner : m_layout.fields()) {
            if (inner.group == field->key)
                reset(inner);
        }
        if (!member.value.is_object())
            continue;
        for (const dom::key_value_pair inner : dom::object(member.value)) {
            if (const auto* const innerField = m_layout.find(inner.key, field->key))
                readField(*innerField, inner.value);
        }
    }
    m_builder->add(m_texts, m_numbers);
    return true;
}

/// The field of that key, null without one. Objects of a list mostly have the same keys in the same order.
const RecordLayout::Field* Reader::fieldAt(std::size_t position, std::string_view key)
{
    if (position < m_expected.size() && m_expected[position] && m_expected[position]->key == key)
        return m_expected[position];
    if (position >= m_expected.size())
        m_expected.resize(position + 1);
    return m_expected[position] = m_layout.find(key);
}

void Reader::reset(const RecordLayout::Field& field)
{
    const auto slot = static_cast<std::size_t>(field.slot);
    if (field.kind == RecordLayout::Text)
        m_texts[slot] = {};
    else if (field.kind != RecordLayout::Group)
        m_numbers[slot] = field.initial();
}

std::string_view Reader::textOf(dom::element value, std::string* kept)
{
    switch (value.type()) {
    case dom::element_type::STRING:
        return value.get_string().value();
    case dom::element_type::INT64:
        *kept = std::to_string(int64_t(value));
        return *kept;
    case dom::element_type::UINT64:
    case dom::element_type::DOUBLE:
        *kept = json::text(double(value)).toStdString();
        return *kept;
    default:
        return {};
    }
}

qint64 wholeNumber(dom::element value)
{
    switch (value.type()) {
    case dom::element_type::INT64:
        return int64_t(value);
    case dom::element_type::DOUBLE:
        return json::integer64(double(value));
    case dom::element_type::STRING: {
        const std::string_view text = value;
        qint64 number = 0;
        const auto end = std::from_chars(text.data(), text.data() + text.size(), number);
        return end.ec == std::errc() && end.ptr == text.data() + text.size() ? number : 0;
    }
    default:
        return 0;
    }
}

void Reader::readField(const RecordLayout::Field& field, dom::element value)
{
    const auto slot = static_cast<std::size_t>(field.slot);
    switch (field.kind) {
    case RecordLayout::Text:
        m_texts[slot] = textOf(value, &m_numerals[slot]);
        break;
    case RecordLayout::Integer:
        m_numbers[slot] = json::integer(wholeNumber(value));
        break;
    case RecordLayout::Stamp:
        m_numbers[slot] = wholeNumber(value);
        break;
    case RecordLayout::Flag:
        m_numbers[slot] = value.is_bool() && bool(value);
        break;
    case RecordLayout::Group:
        break;
    }
}

ListReading Reader::read(const AnswerMark& mark)
{
    // Parsing in parts takes a level of the nesting.
    if (m_parser.allocate(kSlice, kDeepest - 1))
        return {false, QStringLiteral("Out of memory"), nullptr};
    if (!readEnvelope())
        return {false, m_error, nullptr};
    if (!m_success || !m_builder)
        return {false, m_message, nullptr};
    return {true, m_message, m_builder->finish(mark)};
}

} // namespace

ListReading readList(std::string_view answer, const RecordLayout& layout, const SnapshotPtr& last,
                     const QString& owner)
{
    const AnswerMark mark = AnswerMark::of(answer, owner);
    if (mark == last->mark) {
        auto same = std::make_shared<Difference>();
        same->before = same->after = last;
        return {true, QString(), std::move(same)};
    }
    return Reader(answer, layout, last).read(mark);
}
