#include "StatementFixture.h"
#include "statements/TemplateEditor.h"

#include <QTest>
#include <memory>

using TemplateEditor::Node;

namespace {

// An income statement 1 with main groups 10, 11, 12 (11 has rows 20, 21, 22) and a balance
// sheet 2 with "Vastaavaa" 30 and "Vastattavaa" 31 (its row 32), protected.
void templates()
{
    StatementFixture::malli(1, QStringLiteral("Tulos"), 1);
    StatementFixture::malli(2, QStringLiteral("Tase"), 2, 1);
    StatementFixture::exec(QStringLiteral("UPDATE ma SET maSuojattu = 1 WHERE maID = 2"));
    const std::pair<int, const char*> main[] = { { 10, "Tuotot" }, { 11, "Kulut" }, { 12, "Tulos" } };
    for (const auto& [id, teksti] : main)
        StatementFixture::row({ .id = id, .teksti = QString::fromUtf8(teksti), .order = id - 9 });
    for (const int id : { 20, 21, 22 })
        StatementFixture::row(
            { .id = id, .teksti = QStringLiteral("Kulu %1").arg(id), .parent = 11, .order = id - 19 });
    StatementFixture::row({ .id = 30, .ma = 2, .teksti = "Vastaavaa", .order = 1, .side = "D" });
    StatementFixture::row({ .id = 31, .ma = 2, .teksti = "Vastattavaa", .order = 2 });
    StatementFixture::row({ .id = 32, .ma = 2, .teksti = "Oma pääoma", .parent = 31, .order = 1 });
}

// The rows under a group in their order, with their positions: "20:1 21:2 22:3".
QString order(int parent)
{
    return StatementFixture::value(
        QStringLiteral(
            "SELECT GROUP_CONCAT(mrID || ':' || mrGroupOrder, ' ') FROM (SELECT mrID, mrGroupOrder "
            "FROM mr WHERE mrBelongsToGroup = ? AND mrmaID = 1 ORDER BY mrGroupOrder, mrID)"),
        { parent })
        .toString();
}

QString all()
{
    return StatementFixture::value(
        QStringLiteral("SELECT GROUP_CONCAT(x, ' ') FROM (SELECT mrID || '>' || mrBelongsToGroup || ':' || "
                       "mrGroupOrder || mrTilit AS x FROM mr ORDER BY mrID)"))
        .toString();
}

} // namespace

class tst_TemplateEditor : public QObject {
    Q_OBJECT

    std::unique_ptr<StatementFixture> f;

    QStringList infos() const { return f->dialogs.texts(ScriptedDialogs::Kind::Information); }

private slots:
    void init() { QVERIFY(StatementFixture::start(f, templates)); }
    void cleanup() { StatementFixture::finish(f, true); }

    // Later and earlier among the siblings; the first row stays first and the last last.
    void moves()
    {
        QVERIFY(!TemplateEditor::moveEarlier(f->db(), 20));
        QVERIFY(!TemplateEditor::moveLater(f->db(), 22));
        QVERIFY(TemplateEditor::moveLater(f->db(), 20));
        QCOMPARE(order(11), QStringLiteral("21:1 20:2 22:3"));
        QVERIFY(TemplateEditor::moveEarlier(f->db(), 22));
        QCOMPARE(order(11), QStringLiteral("21:1 22:2 20:3"));
    }

    // Each refusal leaves the templates as they were: a group with rows, a No, a protected
    // template. A row goes and its siblings close the gap; a template goes with its own rows only.
    void deleteRules()
    {
        const QString before = all();
        QVERIFY(!TemplateEditor::remove(f->db(), Node::ofRow(11)));
        f->dialogs.answerNo();
        QVERIFY(!TemplateEditor::remove(f->db(), Node::ofRow(20)));
        f->dialogs.answerYes();
        QVERIFY(!TemplateEditor::remove(f->db(), Node::ofTemplate(2)));
        QCOMPARE(all(), before);
        QCOMPARE(infos().size(), 2);

        f->dialogs.answerYes();
        QVERIFY(TemplateEditor::remove(f->db(), Node::ofRow(20)));
        QCOMPARE(order(11), QStringLiteral("21:1 22:2"));
        f->dialogs.answerYes();
        QVERIFY(TemplateEditor::remove(f->db(), Node::ofTemplate(1)));
        QCOMPARE(StatementFixture::count(QStringLiteral("mr"), QStringLiteral("mrmaID = 1")), 0);
        QCOMPARE(StatementFixture::count(QStringLiteral("mr")), 3);
        QCOMPARE(StatementFixture::count(QStringLiteral("ma")), 1);
    }

    // A new row is placed last under its node, with the side of its place: deeper under
    // Vastattavaa, under Vastaavaa, as a main group of a balance sheet, in an income statement. A new
    // template is made under a root, never without a place.
    void newRowsAndTemplates()
    {
        const std::pair<const char*, const char*> cases[] = { { "mr32", "Uusi rivi/32/1K" },
            { "mr30", "Uusi rivi/30/1D" }, { "ma2", "Uusi rivi/0/3D" }, { "mr11", "Uusi rivi/11/4K" } };
        for (const auto& [under, row] : cases) {
            const std::optional<Node> n = TemplateEditor::addNew(f->db(), Node::parse(QLatin1String(under)));
            QVERIFY(n && n->kind == Node::Kind::Row);
            QCOMPARE(
                StatementFixture::value(QStringLiteral("SELECT mrTeksti || '/' || mrBelongsToGroup || '/' || "
                                                       "mrGroupOrder || mrSaldoPuoli FROM mr WHERE mrID = ?"),
                    { n->id })
                    .toString(),
                QLatin1String(row));
        }
        QVERIFY(!TemplateEditor::addNew(f->db(), Node {}));
        const std::optional<Node> n = TemplateEditor::addNew(f->db(), Node::root(2));
        QVERIFY(n && n->kind == Node::Kind::Template);
        QCOMPARE(StatementFixture::count(QStringLiteral("ma"), QStringLiteral("maTyyppi = 2")), 2);
    }

    // A term needs a row and a term row, and a row cannot be a term of its own formula; a missing
    // row is shown as such.
    void formulaBuilding()
    {
        QCOMPARE(TemplateEditor::formulaText(f->db(), 1, QStringLiteral("-10,+99,")),
            QStringLiteral("- [Tuotot] + [puuttuva rivi]"));
        const QString k = QStringLiteral("+10,");
        QVERIFY(!TemplateEditor::addTerm(12, k, true, 12));
        QVERIFY(!TemplateEditor::addTerm(0, k, true, 10));
        QVERIFY(!TemplateEditor::addTerm(12, k, true, 0));
        QCOMPARE(infos().size(), 3);
    }

    // Accounts are refused on a group, and clearing them on a protected template; clearing asks,
    // also on a group, as that is how a mistake is put right.
    void accountChoices()
    {
        using V = std::vector<qint32>;
        QCOMPARE(TemplateEditor::chooseAccounts(true, false, QString(), V { 3 }), std::nullopt);
        QCOMPARE(TemplateEditor::chooseAccounts(false, true, QStringLiteral("3,"), V {}), std::nullopt);
        QCOMPARE(infos().size(), 2);
        f->dialogs.answerNo();
        QCOMPARE(TemplateEditor::chooseAccounts(false, false, QStringLiteral("3,"), V {}), std::nullopt);
        f->dialogs.answerYes();
        QCOMPARE(TemplateEditor::chooseAccounts(true, false, QStringLiteral("3,"), V {}),
            std::optional<QString>(QString()));
    }

    // A row goes last under its new group and, in a balance sheet, takes its side. Refused, and
    // nothing moves: a main group, another template, a group under its own rows.
    void dragAndDrop()
    {
        QVERIFY(TemplateEditor::drop(f->db(), Node::ofRow(20), Node::ofRow(10)));
        QCOMPARE(order(10), QStringLiteral("20:1"));
        QVERIFY(TemplateEditor::drop(f->db(), Node::ofRow(21), Node::ofRow(20)));
        const QString before = all();
        QVERIFY(!TemplateEditor::drop(f->db(), Node::ofRow(11), Node::ofRow(10)));
        QVERIFY(!TemplateEditor::drop(f->db(), Node::ofRow(32), Node::ofRow(10)));
        QVERIFY(!TemplateEditor::drop(f->db(), Node::ofRow(20), Node::ofRow(21)));
        QCOMPARE(all(), before);
        QCOMPARE(infos().size(), 3);
        QVERIFY(TemplateEditor::drop(f->db(), Node::ofRow(32), Node::ofRow(30)));
        QCOMPARE(
            StatementFixture::value(QStringLiteral("SELECT mrSaldoPuoli FROM mr WHERE mrID = 32")).toString(),
            QStringLiteral("D"));
    }
};

QTEST_GUILESS_MAIN(tst_TemplateEditor)
#include "tst_TemplateEditor.moc"
