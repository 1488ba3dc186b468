#include "printing/SelectionFormula.h"

#include "core/Money.h"
#include "printing/ReportError.h"

#include <QDate>
#include <QRegularExpression>

namespace {

enum class Tok { Field, Number, String, Word, LParen, RParen, Comma, Op, End };

struct Token {
    Tok kind = Tok::End;
    QString text; // field "table.field", number text, string value, word, operator
    int pos = 0; // 1-based position in the formula, for messages
};

QString at(int pos) { return QStringLiteral(" (kohta %1)").arg(pos); }

// Numbers are written in the digits 0–9; other scripts' digits are no number here.
bool isDigit(QChar c) { return c >= u'0' && c <= u'9'; }

std::vector<Token> tokenize(const QString& s)
{
    std::vector<Token> tokens;
    qsizetype i = 0;
    const qsizetype n = s.size();
    while (i < n) {
        const QChar c = s.at(i);
        const int pos = int(i) + 1;
        if (c.isSpace()) {
            ++i;
        } else if (c == u'{') {
            const qsizetype end = s.indexOf(u'}', i);
            if (end < 0)
                throw ReportError(QStringLiteral("Kentän nimestä puuttuu loppusulje }") + at(pos) + u'.');
            tokens.push_back({ Tok::Field, s.mid(i + 1, end - i - 1).trimmed(), pos });
            i = end + 1;
        } else if (isDigit(c)
            || (c == u'-' && i + 1 < n && isDigit(s.at(i + 1))
                && (tokens.empty() || tokens.back().kind == Tok::Op || tokens.back().kind == Tok::Comma
                    || tokens.back().kind == Tok::LParen))) {
            qsizetype j = i + 1;
            while (j < n && (isDigit(s.at(j)) || s.at(j) == u'.'))
                ++j;
            tokens.push_back({ Tok::Number, s.mid(i, j - i), pos });
            i = j;
        } else if (c == u'\'' || c == u'"') {
            QString value;
            qsizetype j = i + 1;
            bool closed = false;
            while (j < n) {
                if (s.at(j) == c) {
                    if (j + 1 < n && s.at(j + 1) == c) {
                        value += c;
                        j += 2;
                        continue;
                    }
                    closed = true;
                    break;
                }
                value += s.at(j++);
            }
            if (!closed)
                throw ReportError(
                    QStringLiteral("Teksti jää valintakaavassa lainausmerkkiä vaille") + at(pos) + u'.');
            tokens.push_back({ Tok::String, value, pos });
            i = j + 1;
        } else if (c.isLetter() || c == u'_') {
            qsizetype j = i;
            while (j < n && (s.at(j).isLetterOrNumber() || s.at(j) == u'_'))
                ++j;
            tokens.push_back({ Tok::Word, s.mid(i, j - i), pos });
            i = j;
        } else if (c == u'(' || c == u')' || c == u',') {
            tokens.push_back({ c == u'(' ? Tok::LParen
                    : c == u')'          ? Tok::RParen
                                         : Tok::Comma,
                QString(c), pos });
            ++i;
        } else if (c == u'=' || c == u'<' || c == u'>') {
            QString op(c);
            if (i + 1 < n && c != u'=' && (s.at(i + 1) == u'=' || (c == u'<' && s.at(i + 1) == u'>')))
                op += s.at(i + 1);
            tokens.push_back({ Tok::Op, op, pos });
            i += op.size();
        } else {
            throw ReportError(
                QStringLiteral("Valintakaavassa on merkki, jota ei tunneta: %1").arg(c) + at(pos) + u'.');
        }
    }
    tokens.push_back({ Tok::End, QString(), int(n) + 1 });
    return tokens;
}

bool isWord(const Token& t, const char* word)
{
    return t.kind == Tok::Word && t.text.compare(QLatin1String(word), Qt::CaseInsensitive) == 0;
}

// Splits "table.field".
std::pair<QString, QString> fieldName(const Token& t)
{
    const qsizetype dot = t.text.indexOf(u'.');
    if (dot <= 0 || dot == t.text.size() - 1 || t.text.indexOf(u'.', dot + 1) >= 0)
        throw ReportError(
            QStringLiteral("Kentän {%1} nimi ei ole muotoa {taulu.kenttä}").arg(t.text) + at(t.pos) + u'.');
    return { t.text.left(dot).trimmed(), t.text.mid(dot + 1).trimmed() };
}

FormulaField resolveField(const Token& t, const FieldResolver& lookUp)
{
    const auto [table, field] = fieldName(t);
    const std::optional<FormulaField> f = lookUp(table, field);
    if (!f)
        throw ReportError(
            QStringLiteral("Kenttää {%1} ei ole raportin tiedoissa").arg(t.text) + at(t.pos) + u'.');
    return *f;
}

class Parser final {
public:
    Parser(const QString& formula, const FieldResolver& resolve)
        : m_tokens(tokenize(formula))
        , m_resolve(resolve)
    {
    }

    SqlCondition parse()
    {
        SqlCondition c;
        c.sql = orExpr(c.values);
        if (peek().kind != Tok::End)
            throw ReportError(QStringLiteral("Valintakaavassa on ylimääräistä tekstiä: %1").arg(peek().text)
                + at(peek().pos) + u'.');
        return c;
    }

private:
    struct Operand {
        enum Kind { Field, Number, Text, Date, Bool } kind;
        FormulaField field;
        QString text; // number text
        QVariant value;
        int pos = 0;
    };

    const Token& peek() const { return m_tokens[m_next]; }
    const Token& take() { return m_tokens[m_next++]; }
    void expect(Tok kind, const QString& what)
    {
        if (peek().kind != kind)
            throw ReportError(QStringLiteral("Valintakaavasta puuttuu %1").arg(what) + at(peek().pos) + u'.');
        ++m_next;
    }

    QString orExpr(QVariantList& values)
    {
        QString sql = andExpr(values);
        while (isWord(peek(), "OR")) {
            take();
            sql += QStringLiteral(" OR ") + andExpr(values);
        }
        return sql;
    }

    QString andExpr(QVariantList& values)
    {
        QString sql = notExpr(values);
        while (isWord(peek(), "AND")) {
            take();
            sql += QStringLiteral(" AND ") + notExpr(values);
        }
        return sql;
    }

    // Parentheses and NOTs nest by recursion; a formula nested deeper than any caller writes is
    // refused before it can exhaust the stack.
    static constexpr int MaxDepth = 200;
    void enter(const Token& t)
    {
        if (++m_depth > MaxDepth)
            throw ReportError(
                QStringLiteral("Valintakaavassa on liian monta sisäkkäistä sulkua tai NOT-sanaa") + at(t.pos)
                + u'.');
    }

    QString notExpr(QVariantList& values)
    {
        if (isWord(peek(), "NOT")) {
            enter(take());
            const QString inner = notExpr(values);
            --m_depth;
            return QStringLiteral("NOT (") + inner + u')';
        }
        return primary(values);
    }

    QString primary(QVariantList& values)
    {
        if (peek().kind == Tok::LParen) {
            enter(take());
            const QString inner = orExpr(values);
            expect(Tok::RParen, QStringLiteral("loppusulje )"));
            --m_depth;
            return u'(' + inner + u')';
        }
        const Operand left = operand();
        if (peek().kind == Tok::Op) {
            const QString op = take().text;
            const Operand right = operand();
            return comparison(left, op, right, values);
        }
        // A yes/no field or a truth value stands as a condition by itself.
        if (left.kind == Operand::Field)
            return QStringLiteral("(%1 <> 0)").arg(left.field.sql);
        if (left.kind == Operand::Bool)
            return left.value.toBool() ? QStringLiteral("1 = 1") : QStringLiteral("1 = 0");
        throw ReportError(QStringLiteral("Valintakaavan ehdosta puuttuu vertailu") + at(peek().pos) + u'.');
    }

    Operand operand()
    {
        const Token& t = take();
        switch (t.kind) {
        case Tok::Field:
            return { Operand::Field, resolveField(t, m_resolve), {}, {}, t.pos };
        case Tok::Number:
            if (t.text.count(u'.') > 1 || t.text.endsWith(u'.'))
                throw ReportError(
                    QStringLiteral("Valintakaavan luku %1 on virheellinen").arg(t.text) + at(t.pos) + u'.');
            return { Operand::Number, {}, t.text, {}, t.pos };
        case Tok::String:
            return { Operand::Text, {}, {}, t.text, t.pos };
        case Tok::Word:
            if (isWord(t, "True") || isWord(t, "False"))
                return { Operand::Bool, {}, {}, isWord(t, "True"), t.pos };
            if (isWord(t, "Date"))
                return date(t);
            if (peek().kind == Tok::LParen)
                throw ReportError(
                    QStringLiteral("Valintakaavan funktiota %1 ei tueta").arg(t.text) + at(t.pos) + u'.');
            throw ReportError(QStringLiteral("Valintakaavassa on sana, jota ei tunneta: %1").arg(t.text)
                + at(t.pos) + u'.');
        case Tok::End:
            throw ReportError(QStringLiteral("Valintakaava päättyy kesken") + at(t.pos) + u'.');
        default:
            throw ReportError(
                QStringLiteral("Valintakaavassa on odottamaton %1").arg(t.text) + at(t.pos) + u'.');
        }
    }

    Operand date(const Token& word)
    {
        expect(Tok::LParen, QStringLiteral("Date-funktion alkusulje ("));
        int parts[3] = { 0, 0, 0 };
        for (int i = 0; i < 3; ++i) {
            if (i > 0)
                expect(Tok::Comma, QStringLiteral("pilkku Date-funktion osien välistä"));
            const Token& t = take();
            bool ok = false;
            parts[i] = t.kind == Tok::Number ? t.text.toInt(&ok) : 0;
            if (!ok)
                throw ReportError(QStringLiteral("Date-funktion osat ovat vuosi, kuukausi ja päivä numeroina")
                    + at(t.pos) + u'.');
        }
        expect(Tok::RParen, QStringLiteral("Date-funktion loppusulje )"));
        const QDate d(parts[0], parts[1], parts[2]);
        if (!d.isValid())
            throw ReportError(QStringLiteral("Valintakaavan päivämäärä Date(%1,%2,%3) ei ole oikea päivä")
                                  .arg(parts[0])
                                  .arg(parts[1])
                                  .arg(parts[2])
                + at(word.pos) + u'.');
        return { Operand::Date, {}, {}, d.toString(Qt::ISODate), word.pos };
    }

    // The value of a literal as it is compared with `other` (money in its stored unit).
    // A number too large for its unit is refused rather than compared as something else.
    static QVariant literal(const Operand& o, const Operand& other)
    {
        if (o.kind == Operand::Number) {
            bool ok = true;
            QVariant value;
            if (other.kind == Operand::Field && other.field.money) {
                const std::optional<Money> money = Money::parse(o.text);
                ok = money.has_value();
                value = ok ? money->raw() : 0;
            } else if (o.text.contains(u'.')) {
                value = o.text.toDouble(&ok);
            } else {
                value = o.text.toLongLong(&ok);
            }
            if (!ok)
                throw ReportError(
                    QStringLiteral("Valintakaavan luku %1 on liian suuri").arg(o.text) + at(o.pos) + u'.');
            return value;
        }
        if (o.kind == Operand::Bool)
            return o.value.toBool() ? 1 : 0;
        return o.value;
    }

    static QString comparison(const Operand& l, const QString& op, const Operand& r, QVariantList& values)
    {
        // A yes/no field holds 0 or 1, but any other number than 0 means yes as well.
        const Operand* field = l.kind == Operand::Field ? &l : r.kind == Operand::Field ? &r : nullptr;
        const Operand* truth = l.kind == Operand::Bool ? &l : r.kind == Operand::Bool ? &r : nullptr;
        if (field && truth) {
            if (op != u"=" && op != u"<>")
                throw ReportError(
                    QStringLiteral("Totuusarvoa voi verrata vain merkeillä = ja <>") + at(truth->pos) + u'.');
            const bool wantYes = truth->value.toBool() == (op == u"=");
            return QStringLiteral("(%1 %2 0)")
                .arg(field->field.sql, wantYes ? QStringLiteral("<>") : QStringLiteral("="));
        }
        const auto side = [&](const Operand& o, const Operand& other) {
            if (o.kind == Operand::Field)
                return o.field.sql;
            values.append(literal(o, other));
            return QStringLiteral("?");
        };
        const QString left = side(l, r);
        const QString right = side(r, l);
        return left + u' ' + op + u' ' + right;
    }

    std::vector<Token> m_tokens;
    size_t m_next = 0;
    int m_depth = 0;
    const FieldResolver& m_resolve;
};

} // namespace

namespace SelectionFormula {

SqlCondition toSql(const QString& formula, const FieldResolver& resolve)
{
    if (formula.trimmed().isEmpty())
        return {};
    return Parser(formula, resolve).parse();
}

QString orderBy(const QStringList& sortFields, const FieldResolver& resolve)
{
    static const QRegularExpression form(QStringLiteral(R"(^\s*([+-])\s*\{([^{}]*)\}\s*$)"));
    QStringList terms;
    for (const QString& s : sortFields) {
        const QRegularExpressionMatch m = form.match(s);
        if (!m.hasMatch())
            throw ReportError(
                QStringLiteral("Lajittelukenttä \"%1\" ei ole muotoa +{taulu.kenttä} tai -{taulu.kenttä}.")
                    .arg(s));
        const Token t { Tok::Field, m.captured(2).trimmed(), int(m.capturedStart(2)) + 1 };
        terms.append(resolveField(t, resolve).sql
            + (m.captured(1) == u"+" ? QStringLiteral(" ASC") : QStringLiteral(" DESC")));
    }
    return terms.join(QStringLiteral(", "));
}

} // namespace SelectionFormula
