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
        StatementFixture::row({ .id = id, .ma = 1, .teksti = QString::fromUtf8(teksti), .order = id - 9 });
    for (const int id : { 20, 21, 22 })
        StatementFixture::row({ .id = id,
            .ma = 1,
            .teksti = QStringLiteral("Kulu %1").arg(id),
            .parent = 11,
            .order = id - 19 });
    StatementFixture::row({ .id = 30, .ma = 2, .teksti = "Vastaavaa", .order = 1, .side = "D" });
    StatementFixture::row({ .id = 31, .ma = 2, .teksti = "Vastattavaa", .order = 2 });
    StatementFixture::row({ .id = 32, .ma = 2, .teksti = "Oma pääoma", .parent = 31, .order = 1 });
}

// The rows under a group in their order, with their positions: "20:1 21:2 22:3".
QString order(int parent, int ma = 1)
{
    return StatementFixture::value(
        QStringLiteral(
            "SELECT GROUP_CONCAT(mrID || ':' || mrGroupOrder, ' ') FROM (SELECT mrID, mrGroupOrder "
            "FROM mr WHERE mrBelongsToGroup = ? AND mrmaID = ? ORDER BY mrGroupOrder, mrID)"),
        { parent, ma })
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

    void nodeKeys_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<int>("kind");
        QTest::addColumn<int>("id");
        QTest::newRow("income root") << "root1" << int(Node::Kind::Root) << 1;
        QTest::newRow("template") << "ma12" << int(Node::Kind::Template) << 12;
        QTest::newRow("row") << "mr7" << int(Node::Kind::Row) << 7;
        QTest::newRow("odd") << "mx5" << int(Node::Kind::None) << 0;
        QTest::newRow("not a number") << "ma1'" << int(Node::Kind::None) << 0;
    }
    void nodeKeys()
    {
        QFETCH(QString, key);
        QFETCH(int, kind);
        QFETCH(int, id);
        const Node n = Node::parse(key);
        QCOMPARE(int(n.kind), kind);
        QCOMPARE(n.id, id);
        if (n.kind != Node::Kind::None)
            QCOMPARE(n.key(), key);
    }

    // Later and earlier among the siblings; the last row stays last and the first first.
    void moves_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<bool>("later");
        QTest::addColumn<bool>("moved");
        QTest::addColumn<QString>("after");
        QTest::newRow("first earlier") << 20 << false << false << "20:1 21:2 22:3";
        QTest::newRow("last later") << 22 << true << false << "20:1 21:2 22:3";
        QTest::newRow("first later") << 20 << true << true << "21:1 20:2 22:3";
        QTest::newRow("last earlier") << 22 << false << true << "20:1 22:2 21:3";
    }
    void moves()
    {
        QFETCH(int, row);
        QFETCH(bool, later);
        QFETCH(bool, moved);
        QFETCH(QString, after);
        const QString main = order(0);
        QCOMPARE(later ? TemplateEditor::moveLater(f->db(), row) : TemplateEditor::moveEarlier(f->db(), row),
            moved);
        QCOMPARE(order(11), after);
        QCOMPARE(order(0), main);
    }

    // Rows left at position 0 or with gaps are numbered before they move.
    void movesOverGapsAndZeros()
    {
        StatementFixture::exec(QStringLiteral("UPDATE mr SET mrGroupOrder = 0 WHERE mrID IN (20, 21)"));
        StatementFixture::exec(QStringLiteral("UPDATE mr SET mrGroupOrder = 7 WHERE mrID = 22"));
        QVERIFY(TemplateEditor::moveEarlier(f->db(), 22));
        QCOMPARE(order(11), QStringLiteral("20:1 22:2 21:3"));
    }

    void deleteRules()
    {
        const QString before = all();
        QVERIFY(!TemplateEditor::remove(f->db(), Node {}));
        QVERIFY(!TemplateEditor::remove(f->db(), Node::root(1)));
        QVERIFY(!TemplateEditor::remove(f->db(), Node::ofRow(11)));
        f->dialogs.answerNo();
        QVERIFY(!TemplateEditor::remove(f->db(), Node::ofRow(20)));
        f->dialogs.answerYes();
        QVERIFY(!TemplateEditor::remove(f->db(), Node::ofTemplate(2)));
        QCOMPARE(all(), before);
        QCOMPARE(f->dialogs.transcript(),
            (QStringList { "information: Valitse poistettava rivi luettelosta!",
                "information: Valitse poistettavaksi malli tai mallin rivi!",
                "information: Ryhmää, jolla on alaryhmiä, ei voi poistaa.\nPoista ensin poistettavan ryhmän "
                "alaryhmät.",
                "question: Poistetaanko näytössä oleva rivi?", "question: Poistetaanko näytössä oleva malli?",
                "information: Malli on suojattu, eikä sitä voi poistaa." }));

        // A row goes and its siblings close the gap; a template goes with its own rows only.
        f->dialogs.answerYes();
        QVERIFY(TemplateEditor::remove(f->db(), Node::ofRow(20)));
        QCOMPARE(order(11), QStringLiteral("21:1 22:2"));
        f->dialogs.answerYes();
        QVERIFY(TemplateEditor::remove(f->db(), Node::ofTemplate(1)));
        QCOMPARE(StatementFixture::count(QStringLiteral("mr"), QStringLiteral("mrmaID = 1")), 0);
        QCOMPARE(StatementFixture::count(QStringLiteral("mr")), 3);
        QCOMPARE(StatementFixture::count(QStringLiteral("ma")), 1);
    }

    // A new row is placed last under its node, with the side of its place.
    void newRows_data()
    {
        QTest::addColumn<QString>("under");
        QTest::addColumn<int>("parent");
        QTest::addColumn<int>("position");
        QTest::addColumn<QString>("side");
        QTest::newRow("deeper under Vastattavaa") << "mr32" << 32 << 1 << "K";
        QTest::newRow("under Vastaavaa") << "mr30" << 30 << 1 << "D";
        QTest::newRow("main group of a balance sheet") << "ma2" << 0 << 3 << "D";
        QTest::newRow("income statement") << "mr11" << 11 << 4 << "K";
    }
    void newRows()
    {
        QFETCH(QString, under);
        QFETCH(int, parent);
        QFETCH(int, position);
        QFETCH(QString, side);
        const std::optional<Node> n = TemplateEditor::addNew(f->db(), Node::parse(under));
        QVERIFY(n && n->kind == Node::Kind::Row);
        QSqlQuery q(f->db());
        q.exec(QStringLiteral(
            "SELECT mrTeksti, mrBelongsToGroup, mrGroupOrder, mrSaldoPuoli FROM mr WHERE mrID = %1")
                   .arg(n->id));
        QVERIFY(q.next());
        QCOMPARE(q.value(0).toString(), QStringLiteral("Uusi rivi"));
        QCOMPARE(q.value(1).toInt(), parent);
        QCOMPARE(q.value(2).toInt(), position);
        QCOMPARE(q.value(3).toString(), side);
    }

    void newTemplates()
    {
        QVERIFY(!TemplateEditor::addNew(f->db(), Node {}));
        QCOMPARE(infos(), QStringList { "Valitse ensin listalta kohde, johon lisätään." });
        for (const int kind : { 1, 2 }) {
            const std::optional<Node> n = TemplateEditor::addNew(f->db(), Node::root(kind));
            QVERIFY(n && n->kind == Node::Kind::Template);
            QCOMPARE(StatementFixture::value(
                         QStringLiteral("SELECT maNimi || '/' || maTyyppi FROM ma WHERE maID = ?"), { n->id })
                         .toString(),
                kind == 1 ? QStringLiteral("Uusi tuloslaskelmamalli/1") : QStringLiteral("Uusi tasemalli/2"));
        }
    }

    // Terms are appended in the order of the clicks and shown by caption.
    void formulaBuilding()
    {
        const std::optional<QString> k = TemplateEditor::addTerm(12, QStringLiteral("+10,-11,"), true, 22);
        QCOMPARE(k, std::optional<QString>(QStringLiteral("+10,-11,+22,")));
        QCOMPARE(
            TemplateEditor::formulaText(f->db(), 1, *k), QStringLiteral("[Tuotot] - [Kulut] + [Kulu 22]"));
        QCOMPARE(TemplateEditor::formulaText(f->db(), 1, QStringLiteral("-10,+99,")),
            QStringLiteral("- [Tuotot] + [puuttuva rivi]"));
        // A balance sheet's term for an income statement's profit shows the template's name.
        QCOMPARE(TemplateEditor::formulaText(f->db(), 2, QStringLiteral("+12,")),
            QStringLiteral("Tulos : Voitto/Tappio"));

        QVERIFY(!TemplateEditor::addTerm(12, *k, true, 12));
        QVERIFY(!TemplateEditor::addTerm(0, *k, true, 10));
        QVERIFY(!TemplateEditor::addTerm(12, *k, true, 0));
        QCOMPARE(infos().size(), 3);
        QCOMPARE(infos().first(), QStringLiteral("Rivi ei voi olla oman kaavansa osa."));
    }

    void accountChoices()
    {
        using V = std::vector<qint32>;
        QCOMPARE(TemplateEditor::chooseAccounts(false, false, QString(), V { 3, 1 }),
            std::optional<QString>(QStringLiteral("3,1,")));
        QCOMPARE(TemplateEditor::chooseAccounts(true, false, QString(), V { 3 }), std::nullopt);
        QCOMPARE(infos().last(),
            QStringLiteral("Pääryhmään ei pidä valita tilejä. Valitse tilejä vain alimman tason ryhmiin."));
        QCOMPARE(TemplateEditor::chooseAccounts(false, true, QStringLiteral("3,"), V {}), std::nullopt);
        QCOMPARE(infos().last(),
            QStringLiteral("Poista ensin mallin suojaus poistaaksesi tämän ryhmän tilivalinnat."));
        f->dialogs.answerNo();
        QCOMPARE(TemplateEditor::chooseAccounts(false, false, QStringLiteral("3,"), V {}), std::nullopt);
        f->dialogs.answerYes();
        QCOMPARE(TemplateEditor::chooseAccounts(false, false, QStringLiteral("3,"), V {}),
            std::optional<QString>(QString()));
        // Clearing a group's old accounts is allowed: that is how a mistake is put right.
        f->dialogs.answerYes();
        QCOMPARE(TemplateEditor::chooseAccounts(true, false, QStringLiteral("3,"), V {}),
            std::optional<QString>(QString()));
    }

    void dragAndDrop()
    {
        const QString before = all();
        QVERIFY(!TemplateEditor::drop(f->db(), Node::ofTemplate(1), Node::ofRow(10)));
        QVERIFY(!TemplateEditor::drop(f->db(), Node::ofRow(11), Node::ofRow(10)));
        QVERIFY(!TemplateEditor::drop(f->db(), Node::ofRow(32), Node::ofRow(10)));
        QCOMPARE(all(), before);
        QCOMPARE(infos(),
            (QStringList { "Et voi siirtää kokonaista mallia!", "Et voi siirtää pääryhmiä!",
                "Rivin voi siirtää vain saman mallin sisällä." }));
        QVERIFY(TemplateEditor::drop(f->db(), Node::ofRow(20), Node::ofRow(10)));
        QCOMPARE(order(10), QStringLiteral("20:1"));
        QCOMPARE(order(11), QStringLiteral("21:1 22:2"));
        QVERIFY(TemplateEditor::drop(f->db(), Node::ofRow(21), Node::ofRow(20)));
        // A group cannot go under its own rows.
        const QString moved = all();
        QVERIFY(!TemplateEditor::drop(f->db(), Node::ofRow(20), Node::ofRow(21)));
        QCOMPARE(all(), moved);
        // In a balance sheet the row takes the side of its new main group.
        QVERIFY(TemplateEditor::drop(f->db(), Node::ofRow(32), Node::ofRow(30)));
        QCOMPARE(
            StatementFixture::value(QStringLiteral("SELECT mrSaldoPuoli FROM mr WHERE mrID = 32")).toString(),
            QStringLiteral("D"));
    }

    void sideLists()
    {
        QCOMPARE(TemplateEditor::accounts(f->db()).front().text, QStringLiteral("[Ei tilejä]"));
        StatementFixture::account(5, 1910, QStringLiteral("Pankki"));
        StatementFixture::account(4, 1900, QStringLiteral("Kassa"));
        const auto accounts = TemplateEditor::accounts(f->db());
        QCOMPARE(accounts.size(), size_t(2));
        QCOMPARE(accounts.front().text, QStringLiteral("1900 Kassa"));
        QCOMPARE(TemplateEditor::formulaRows(f->db(), 9, false).front().text, QStringLiteral("[Ei rivejä]"));
        StatementFixture::exec(QStringLiteral("UPDATE mr SET mrIsVoitto = 1 WHERE mrID = 12"));
        const auto rows = TemplateEditor::formulaRows(f->db(), 2, true);
        QCOMPARE(rows.back().text, QStringLiteral("Tulos : [Voitto / Tappio]"));
        QCOMPARE(rows.back().id, 12);
        QCOMPARE(rows.front().text, QStringLiteral("Oma pääoma"));
    }
};

QTEST_GUILESS_MAIN(tst_TemplateEditor)
#include "tst_TemplateEditor.moc"
