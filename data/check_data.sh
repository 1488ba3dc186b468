#!/usr/bin/env bash
# Checks the model database and the demo association built from SQL text:
# loads models/perusmalli.sql and demo/demo1.sql into a temporary SQLite database with the
# placeholders @VUOSI@/@EDVUOSI@ replaced, checks the chart, the two statement templates and
# the vouchers, and prints the year's result and the balance sheet totals.
#
#   data/check_data.sh [VUOSI]        (default: the current calendar year)
#
# Exit status 0 when every check passes, 1 when a check fails, 2 when the files do not load.

set -u

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
model_sql=${MODEL_SQL:-"$here/models/perusmalli.sql"}
demo_sql=${DEMO_SQL:-"$here/demo/demo1.sql"}
year=${1:-$(date +%Y)}
prev=$((year - 1))

command -v sqlite3 >/dev/null || { echo "check_data: sqlite3 puuttuu" >&2; exit 2; }
for f in "$model_sql" "$demo_sql"; do
    [ -r "$f" ] || { echo "check_data: tiedostoa ei voi lukea: $f" >&2; exit 2; }
done

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

ddl() {
    cat <<'SQL'
CREATE TABLE tl (tlID INTEGER PRIMARY KEY AUTOINCREMENT, tlNumero INTEGER, tlNimi TEXT, tlKuvaus TEXT, tlAlkusaldo INTEGER DEFAULT 0, tlLoppusaldo INTEGER DEFAULT 0, tlPrint INTEGER);
CREATE TABLE "to" (toID INTEGER PRIMARY KEY AUTOINCREMENT, toNumero INTEGER, toPvm TEXT, toSelite TEXT, toAvaustosite INTEGER NOT NULL DEFAULT 0, toPaatostosite INTEGER NOT NULL DEFAULT 0, toAutomaatti INTEGER NOT NULL DEFAULT 0);
CREATE TABLE vi (viID INTEGER PRIMARY KEY AUTOINCREMENT, vitoID INTEGER, vitlID INTEGER, viTyyppi TEXT, viArvo INTEGER DEFAULT 0, viSelite TEXT, viAvausvienti INTEGER NOT NULL DEFAULT 0, viPaatosvienti INTEGER NOT NULL DEFAULT 0, viAutomaatti INTEGER NOT NULL DEFAULT 0);
CREATE TABLE toE (toEID INTEGER PRIMARY KEY AUTOINCREMENT, toENumero INTEGER, toEPvm TEXT, toESelite TEXT, toEAvaustosite INTEGER NOT NULL DEFAULT 0, toEPaatostosite INTEGER NOT NULL DEFAULT 0, toEAutomaatti INTEGER NOT NULL DEFAULT 0);
CREATE TABLE viE (viEID INTEGER PRIMARY KEY AUTOINCREMENT, viEtoID INTEGER, viEtlID INTEGER, viETyyppi TEXT, viEArvo INTEGER DEFAULT 0, viESelite TEXT, viEAvausvienti INTEGER NOT NULL DEFAULT 0, viEPaatosvienti INTEGER NOT NULL DEFAULT 0, viEAutomaatti INTEGER NOT NULL DEFAULT 0);
CREATE TABLE ma (maID INTEGER PRIMARY KEY AUTOINCREMENT, maNimi TEXT, maTyyppi INTEGER, maSuojattu INTEGER NOT NULL DEFAULT 0, maTulosMaID INTEGER);
CREATE TABLE mr (mrID INTEGER PRIMARY KEY AUTOINCREMENT, mrmaID INTEGER, mrTeksti TEXT, mrTilit TEXT, mrKaava TEXT, mrSaldoPuoli TEXT, mrIsEquation INTEGER NOT NULL DEFAULT 0, mrIsLiikevaihto INTEGER NOT NULL DEFAULT 0, mrIsVoitto INTEGER NOT NULL DEFAULT 0, mrBelongsToGroup INTEGER DEFAULT 0, mrGroupOrder INTEGER DEFAULT 0);
CREATE TABLE Settings (setID INTEGER PRIMARY KEY AUTOINCREMENT, setSection TEXT, setKey TEXT, setString TEXT);
SQL
}

expand() { sed -e "s/@EDVUOSI@/$prev/g" -e "s/@VUOSI@/$year/g" "$1"; }

# Builds database $1 from the given SQL files, all in one transaction as the build does.
build() {
    local db=$1; shift
    ddl | sqlite3 -bail "$db" || return 1
    { echo 'BEGIN;'; for f in "$@"; do expand "$f"; echo; done; echo 'COMMIT;'; } |
        sqlite3 -bail "$db" 2>"$work/load.err"
    local rc=$?
    if [ $rc -ne 0 ] || [ -s "$work/load.err" ]; then
        cat "$work/load.err" >&2
        return 1
    fi
}

failures=0
fail() { echo "VIRHE: $*"; failures=$((failures + 1)); }

# The source files hold plain statements only: the loader creates the tables and wraps the
# transaction, and it does not understand the command-line shell's dot-commands.
for f in "$model_sql" "$demo_sql"; do
    bad=$(sed -e 's/--.*$//' "$f" | grep -inE '^[[:space:]]*\.|\b(CREATE|DROP|ALTER|BEGIN|COMMIT|ROLLBACK|ATTACH|PRAGMA|VACUUM)\b')
    [ -z "$bad" ] || fail "$(basename "$f"): kielletty lause: $bad"
    grep -q '@VUOSI@\|@EDVUOSI@' "$f" || [ "$f" = "$model_sql" ] || fail "$(basename "$f"): ei vuosimerkintää @VUOSI@"
done

# The model must load on its own and hold no vouchers.
model_db="$work/perusmalli.db"
if ! build "$model_db" "$model_sql"; then
    echo "VIRHE: perusmalli.sql ei lataudu" >&2
    exit 2
fi
n=$(sqlite3 "$model_db" 'SELECT (SELECT COUNT(*) FROM "to") + (SELECT COUNT(*) FROM vi);')
[ "$n" = 0 ] || fail "perusmalli.sql sisältää tositteita tai vientejä ($n)"

db="$work/demo1.db"
if ! build "$db" "$model_sql" "$demo_sql"; then
    echo "VIRHE: perusmalli.sql + demo1.sql ei lataudu" >&2
    exit 2
fi

# Helper views over the comma lists of the templates (temporary, only in this connection).
views=$(cat <<'SQL'
CREATE TEMP VIEW tpl AS
  SELECT (SELECT maID FROM ma WHERE maTyyppi = 1) AS tulos, (SELECT maID FROM ma WHERE maTyyppi = 2) AS tase;
CREATE TEMP VIEW mr_acc AS
  WITH RECURSIVE s(mrID, mrmaID, item, rest) AS (
    SELECT mrID, mrmaID, NULL, trim(coalesce(mrTilit, '')) FROM mr
    UNION ALL
    SELECT mrID, mrmaID, substr(rest, 1, instr(rest, ',') - 1), substr(rest, instr(rest, ',') + 1)
    FROM s WHERE instr(rest, ',') > 0)
  SELECT mrID, mrmaID, CAST(item AS INTEGER) AS tlID FROM s WHERE item IS NOT NULL;
CREATE TEMP VIEW mr_term AS
  WITH RECURSIVE s(mrID, mrmaID, item, rest) AS (
    SELECT mrID, mrmaID, NULL, trim(coalesce(mrKaava, '')) FROM mr
    UNION ALL
    SELECT mrID, mrmaID, substr(rest, 1, instr(rest, ',') - 1), substr(rest, instr(rest, ',') + 1)
    FROM s WHERE instr(rest, ',') > 0)
  SELECT mrID, mrmaID, substr(item, 1, 1) AS sign, CAST(substr(item, 2) AS INTEGER) AS ref, item
  FROM s WHERE item IS NOT NULL;
CREATE TEMP VIEW tree AS
  WITH RECURSIVE t(mrID, mrmaID, path, root) AS (
    SELECT mrID, mrmaID, printf('%04d', mrGroupOrder), mrTeksti FROM mr WHERE mrBelongsToGroup = 0
    UNION ALL
    SELECT c.mrID, c.mrmaID, t.path || '.' || printf('%04d', c.mrGroupOrder), t.root
    FROM mr c JOIN t ON c.mrBelongsToGroup = t.mrID AND c.mrmaID = t.mrmaID)
  SELECT * FROM t;
CREATE TEMP VIEW profit_acc AS
  SELECT a.tlID FROM mr_acc a JOIN mr m ON m.mrID = a.mrID, tpl
  WHERE m.mrmaID = tpl.tulos AND m.mrIsVoitto = 1;
SQL
)

q() { sqlite3 -separator ' | ' "$db" "$views" "$1"; }

# check "message" "query returning offending rows"
check() {
    local out
    out=$(q "$2") || { fail "$1 (kysely epäonnistui)"; return; }
    if [ -n "$out" ]; then
        fail "$1"
        echo "$out" | head -20 | sed 's/^/    /'
    fi
}

# Chart of accounts ----------------------------------------------------------------------
check "tilinumero puuttuu tai on kahdesti" \
    "SELECT tlNumero, COUNT(*) FROM tl GROUP BY tlNumero HAVING COUNT(*) > 1 OR tlNumero IS NULL OR tlNumero <= 0;"
check "tilin numero ei ole nelinumeroinen" \
    "SELECT tlNumero, tlNimi FROM tl WHERE tlNumero NOT BETWEEN 1000 AND 9999;"
check "tilin nimi tai kuvaus liian pitkä tai tyhjä" \
    "SELECT tlNumero FROM tl WHERE length(tlNimi) > 50 OR length(tlKuvaus) > 255 OR tlNimi IS NULL OR trim(tlNimi) = '' OR tlKuvaus IS NULL;"
check "tilin tlPrint ei ole 1 tai saldot eivät ole 0" \
    "SELECT tlNumero FROM tl WHERE tlPrint IS NOT 1 OR tlAlkusaldo IS NOT 0 OR tlLoppusaldo IS NOT 0;"
check "tilillä ei ole pankkitiliä 1910, kassaa 1900 tai jäsenmaksuja 5000" \
    "SELECT n FROM (SELECT 1900 AS n UNION SELECT 1910 UNION SELECT 5000) WHERE n NOT IN (SELECT tlNumero FROM tl);"

# Templates ----------------------------------------------------------------------------------
check "tarvitaan täsmälleen yksi tuloslaskelma- ja yksi tasemalli" \
    "SELECT maTyyppi, COUNT(*) FROM ma GROUP BY maTyyppi HAVING COUNT(*) <> 1
     UNION ALL SELECT 'tyyppi', maTyyppi FROM ma WHERE maTyyppi NOT IN (1, 2)
     UNION ALL SELECT 'puuttuu', 0 FROM tpl WHERE tulos IS NULL OR tase IS NULL;"
check "tasemallin maTulosMaID ei ole tuloslaskelmamalli" \
    "SELECT maID, maTulosMaID FROM ma, tpl WHERE maTyyppi = 2 AND maTulosMaID IS NOT tpl.tulos;"
check "mallin nimi liian pitkä tai tyhjä" \
    "SELECT maID FROM ma WHERE length(maNimi) > 50 OR trim(coalesce(maNimi, '')) = '';"
check "mallirivi kuuluu tuntemattomaan malliin" \
    "SELECT mrID FROM mr WHERE mrmaID NOT IN (SELECT maID FROM ma);"
check "rivin otsikko liian pitkä, tyhjä tai sisältää heittomerkin" \
    "SELECT mrID, mrTeksti FROM mr WHERE length(mrTeksti) > 50 OR trim(coalesce(mrTeksti, '')) = '' OR instr(mrTeksti, '''') > 0;"
check "sama otsikko kahdesti samassa mallissa" \
    "SELECT mrmaID, mrTeksti, COUNT(*) FROM mr GROUP BY mrmaID, mrTeksti HAVING COUNT(*) > 1;"
check "rivi ei ole mallin puussa (ryhmä puuttuu tai on toisessa mallissa)" \
    "SELECT mrID, mrTeksti FROM mr WHERE mrID NOT IN (SELECT mrID FROM tree);"
check "samassa ryhmässä kaksi riviä samalla järjestysnumerolla tai järjestys ei ala 1:stä" \
    "SELECT mrmaID, mrBelongsToGroup, mrGroupOrder FROM mr GROUP BY mrmaID, mrBelongsToGroup, mrGroupOrder HAVING COUNT(*) > 1
     UNION ALL SELECT mrmaID, mrBelongsToGroup, MIN(mrGroupOrder) FROM mr GROUP BY mrmaID, mrBelongsToGroup
               HAVING MIN(mrGroupOrder) <> 1 OR MAX(mrGroupOrder) <> COUNT(*);"
check "mrTilit ei ole muotoa 'id,id,'" \
    "SELECT mrID, mrTilit FROM mr WHERE trim(coalesce(mrTilit, '')) <> ''
       AND (mrTilit NOT GLOB '*,' OR mrTilit GLOB '*[^0-9,]*' OR instr(mrTilit, ',,') > 0 OR mrTilit GLOB ',*');"
check "mrKaava ei ole muotoa '+id,-id,'" \
    "SELECT mrID, mrKaava FROM mr WHERE trim(coalesce(mrKaava, '')) <> '' AND mrKaava NOT GLOB '*,'
     UNION ALL SELECT mrID, item FROM mr_term WHERE item NOT GLOB '[+-][0-9]*' OR substr(item, 2) GLOB '*[^0-9]*';"
check "mrTilit viittaa tiliin, jota ei ole" \
    "SELECT mrID, tlID FROM mr_acc WHERE tlID NOT IN (SELECT tlID FROM tl WHERE tlNumero > 0);"
check "tili on mallipariin useammin kuin kerran" \
    "SELECT a.tlID, tl.tlNumero, COUNT(*) FROM mr_acc a JOIN tl USING (tlID), tpl
     WHERE a.mrmaID IN (tpl.tulos, tpl.tase) GROUP BY a.tlID HAVING COUNT(*) > 1;"
check "tili puuttuu mallipareista" \
    "SELECT tlNumero, tlNimi FROM tl, tpl WHERE tlNumero > 0
       AND tlID NOT IN (SELECT tlID FROM mr_acc WHERE mrmaID IN (tpl.tulos, tpl.tase));"
check "tase- ja tulostili väärässä mallissa (1000-2999 taseeseen, 3000-9999 tuloslaskelmaan)" \
    "SELECT tl.tlNumero, a.mrmaID FROM mr_acc a JOIN tl USING (tlID), tpl
     WHERE (tl.tlNumero < 3000 AND a.mrmaID <> tpl.tase) OR (tl.tlNumero >= 3000 AND a.mrmaID <> tpl.tulos);"
check "kaava viittaa riviin, jota ei ole samassa mallissa" \
    "SELECT t.mrID, t.ref FROM mr_term t LEFT JOIN mr r ON r.mrID = t.ref WHERE r.mrID IS NULL OR r.mrmaID <> t.mrmaID;"
check "kaava viittaa riviin, joka lasketaan vasta kaavarivin jälkeen" \
    "SELECT t.mrID, t.ref FROM mr_term t JOIN tree f ON f.mrID = t.mrID JOIN tree r ON r.mrID = t.ref
     WHERE NOT (r.path < f.path AND substr(f.path, 1, length(r.path) + 1) <> r.path || '.');"
check "kaavarivillä on tilejä tai kaava puuttuu" \
    "SELECT mrID FROM mr WHERE mrIsEquation = 1 AND (trim(coalesce(mrTilit, '')) <> '' OR trim(coalesce(mrKaava, '')) = '');"
check "kaava rivillä, joka ei ole kaavarivi" \
    "SELECT mrID FROM mr WHERE mrIsEquation = 0 AND trim(coalesce(mrKaava, '')) <> '';"
check "ryhmärivillä on tilejä" \
    "SELECT p.mrID, p.mrTeksti FROM mr p WHERE EXISTS (SELECT 1 FROM mr c WHERE c.mrBelongsToGroup = p.mrID)
       AND trim(coalesce(p.mrTilit, '')) NOT IN ('', '-1,');"
check "tuloslaskelman rivin saldopuoli ei ole K" \
    "SELECT mrID, mrTeksti FROM mr, tpl WHERE mrmaID = tpl.tulos AND mrSaldoPuoli IS NOT 'K';"
check "taseen pääryhmät eivät ole täsmälleen Vastaavaa ja Vastattavaa" \
    "SELECT group_concat(mrTeksti) FROM mr, tpl WHERE mrmaID = tpl.tase AND mrBelongsToGroup = 0
     HAVING COUNT(*) <> 2 OR SUM(mrTeksti IN ('Vastaavaa', 'Vastattavaa')) <> 2 OR COUNT(DISTINCT mrTeksti) <> 2;"
check "taseen rivin saldopuoli väärä (Vastaavaa D, Vastattavaa K)" \
    "SELECT m.mrID, m.mrTeksti FROM mr m JOIN tree t USING (mrID), tpl WHERE m.mrmaID = tpl.tase
       AND NOT ((t.root = 'Vastaavaa' AND m.mrSaldoPuoli = 'D') OR (t.root = 'Vastattavaa' AND m.mrSaldoPuoli = 'K'));"
check "tuloslaskelmassa ei ole täsmälleen yhtä liikevaihtoriviä 'Varsinaisen toiminnan tuotot'" \
    "SELECT COUNT(*), group_concat(mrTeksti) FROM mr, tpl WHERE mrmaID = tpl.tulos AND mrIsLiikevaihto = 1
     HAVING COUNT(*) <> 1 OR MIN(mrTeksti) <> 'Varsinaisen toiminnan tuotot';"
check "tuloslaskelmassa ei ole täsmälleen yhtä voittoriviä pääryhmätasolla yhdellä tilillä" \
    "SELECT COUNT(*), group_concat(mrTeksti) FROM mr, tpl WHERE mrmaID = tpl.tulos AND mrIsVoitto = 1
     HAVING COUNT(*) <> 1 OR MAX(mrBelongsToGroup) <> 0 OR MIN(mrTeksti) <> 'Tilikauden ylijäämä (alijäämä)'
         OR (SELECT COUNT(*) FROM profit_acc) <> 1;"
check "tasemallissa on liikevaihto- tai voittorivi" \
    "SELECT mrID FROM mr, tpl WHERE mrmaID = tpl.tase AND (mrIsLiikevaihto = 1 OR mrIsVoitto = 1);"
check "'Tilikauden tulos' ei ole kaavarivi kolmesta toiminnasta ja yleisavustuksista" \
    "SELECT 1 WHERE (SELECT group_concat(r.mrTeksti, '|') FROM (SELECT r.mrTeksti FROM mr f JOIN mr_term t ON t.mrID = f.mrID
                     JOIN mr r ON r.mrID = t.ref, tpl WHERE f.mrmaID = tpl.tulos AND f.mrTeksti = 'Tilikauden tulos'
                     AND f.mrIsEquation = 1 AND t.sign = '+' ORDER BY r.mrTeksti) r)
       IS NOT 'Sijoitus- ja rahoitustoiminta|Varainhankinta|Varsinainen toiminta|Yleisavustukset';"

# Settings ----------------------------------------------------------------------------------
check "asetus puuttuu tai on kahdesti" \
    "SELECT k, (SELECT COUNT(*) FROM Settings WHERE setSection = 'VORKAM' AND setKey = k) AS n
     FROM (SELECT 'VoittoTaseella' AS k UNION SELECT 'LaskettavaTili' UNION SELECT 'Seurannimi'
           UNION SELECT 'TilikausiAlku' UNION SELECT 'TilikausiLoppu' UNION SELECT 'EdTilikausiAlku'
           UNION SELECT 'EdTilikausiLoppu') WHERE n <> 1;"
check "asetuksella väärä osio" \
    "SELECT setKey FROM Settings WHERE setSection IS NOT 'VORKAM';"
check "VoittoTaseella ei ole taseen 'Tilikauden ylijäämä (alijäämä)' -rivin ainoa tili" \
    "SELECT setString FROM Settings WHERE setKey = 'VoittoTaseella' AND setString IS NOT
       (SELECT CAST(a.tlID AS TEXT) FROM mr_acc a JOIN mr m ON m.mrID = a.mrID, tpl
        WHERE m.mrmaID = tpl.tase AND m.mrTeksti = 'Tilikauden ylijäämä (alijäämä)'
          AND (SELECT COUNT(*) FROM mr_acc b WHERE b.mrID = m.mrID) = 1);"
check "VoittoTaseella on sama tili kuin tuloslaskelman voittotili" \
    "SELECT setString FROM Settings WHERE setKey = 'VoittoTaseella' AND setString = (SELECT CAST(tlID AS TEXT) FROM profit_acc);"
check "LaskettavaTili ei ole pankkitili 1910" \
    "SELECT setString FROM Settings WHERE setKey = 'LaskettavaTili' AND setString IS NOT (SELECT CAST(tlID AS TEXT) FROM tl WHERE tlNumero = 1910);"
check "tilikauden päivämäärät väärin" \
    "SELECT setKey, setString FROM Settings WHERE
        (setKey = 'TilikausiAlku' AND setString <> '1.1.$year') OR (setKey = 'TilikausiLoppu' AND setString <> '31.12.$year')
     OR (setKey = 'EdTilikausiAlku' AND setString <> '1.1.$prev') OR (setKey = 'EdTilikausiLoppu' AND setString <> '31.12.$prev');"

# Vouchers and entries -------------------------------------------------------------------
check "edellisen vuoden taulut eivät ole tyhjiä" \
    "SELECT 'toE', COUNT(*) FROM toE HAVING COUNT(*) > 0 UNION ALL SELECT 'viE', COUNT(*) FROM viE HAVING COUNT(*) > 0;"
check "automaattisia tositteita tai vientejä" \
    "SELECT 'to', toID FROM \"to\" WHERE toAutomaatti <> 0 UNION ALL SELECT 'vi', viID FROM vi WHERE viAutomaatti <> 0;"
check "tosite ei täsmää (debet <> kredit) tai siinä on alle kaksi vientiä" \
    "SELECT t.toNumero, SUM(CASE v.viTyyppi WHEN 'D' THEN v.viArvo ELSE 0 END) AS d,
            SUM(CASE v.viTyyppi WHEN 'K' THEN v.viArvo ELSE 0 END) AS k
     FROM \"to\" t LEFT JOIN vi v ON v.vitoID = t.toID GROUP BY t.toID HAVING d IS NOT k OR COUNT(v.viID) < 2;"
check "viennin tiliä ei ole" \
    "SELECT viID, vitlID FROM vi WHERE vitlID NOT IN (SELECT tlID FROM tl WHERE tlNumero > 0);"
check "viennin tositetta ei ole" \
    "SELECT viID, vitoID FROM vi WHERE vitoID NOT IN (SELECT toID FROM \"to\");"
check "viennin tyyppi tai summa väärä (D/K, > 0, tasasentit)" \
    "SELECT viID, viTyyppi, viArvo FROM vi WHERE viTyyppi NOT IN ('D', 'K') OR typeof(viArvo) <> 'integer' OR viArvo <= 0 OR viArvo % 100 <> 0;"
check "viennin selite ei ole tositteen selite" \
    "SELECT v.viID, t.toNumero FROM vi v JOIN \"to\" t ON t.toID = v.vitoID WHERE v.viSelite IS NOT t.toSelite;"
check "selite tyhjä tai liian pitkä" \
    "SELECT toNumero FROM \"to\" WHERE trim(coalesce(toSelite, '')) = '' OR length(toSelite) > 255;"
check "päivämäärä ei ole tilikaudella $year tai ei ole kelvollinen" \
    "SELECT toNumero, toPvm FROM \"to\" WHERE date(toPvm) IS NOT toPvm OR toPvm NOT BETWEEN '$year-01-01' AND '$year-12-31';"
check "tositenumerot eivät ole 0..N peräkkäin" \
    "SELECT COUNT(*), MIN(toNumero), MAX(toNumero), COUNT(DISTINCT toNumero) FROM \"to\"
     HAVING MIN(toNumero) <> 0 OR MAX(toNumero) <> COUNT(*) - 1 OR COUNT(DISTINCT toNumero) <> COUNT(*);"
check "tositenumerot eivät kasva päivämäärän mukaan" \
    "SELECT a.toNumero, a.toPvm, b.toNumero, b.toPvm FROM \"to\" a JOIN \"to\" b ON b.toNumero > a.toNumero WHERE b.toPvm < a.toPvm;"
check "avaustosite väärin (yksi tosite, numero 0, 1.1., 'Tilinavausviennit')" \
    "SELECT COUNT(*) FROM \"to\" WHERE toAvaustosite = 1 HAVING COUNT(*) <> 1
     UNION ALL SELECT toNumero FROM \"to\" WHERE toAvaustosite = 1
       AND (toNumero <> 0 OR toPvm <> '$year-01-01' OR toSelite <> 'Tilinavausviennit' OR toPaatostosite <> 0)
     UNION ALL SELECT toNumero FROM \"to\" WHERE toNumero = 0 AND toAvaustosite <> 1;"
check "avausvienti väärällä tositteella tai avaustositteen vienti ei ole avausvienti" \
    "SELECT v.viID FROM vi v JOIN \"to\" t ON t.toID = v.vitoID WHERE v.viAvausvienti IS NOT t.toAvaustosite;"
check "avaustosite ei sisällä pankkia, kassaa, saamista, velkaa ja omaa pääomaa" \
    "SELECT r FROM (SELECT 'pankki' AS r, 1910 AS lo, 1919 AS hi UNION SELECT 'kassa', 1900, 1900
                    UNION SELECT 'saaminen', 1700, 1899 UNION SELECT 'velka', 2800, 2999 UNION SELECT 'oma pääoma', 2000, 2299)
     WHERE NOT EXISTS (SELECT 1 FROM vi JOIN tl ON tl.tlID = vi.vitlID WHERE vi.viAvausvienti = 1 AND tl.tlNumero BETWEEN lo AND hi);"
check "avaustositteella tulos- tai kulutilejä" \
    "SELECT v.viID, tl.tlNumero FROM vi v JOIN tl ON tl.tlID = v.vitlID WHERE v.viAvausvienti = 1 AND tl.tlNumero >= 3000;"
check "tilinpäätösvienti väärällä tositteella tai tilinpäätöstosite ei ole 31.12." \
    "SELECT v.viID FROM vi v JOIN \"to\" t ON t.toID = v.vitoID WHERE v.viPaatosvienti IS NOT t.toPaatostosite
     UNION ALL SELECT toNumero FROM \"to\" WHERE toPaatostosite = 1 AND toPvm <> '$year-12-31';"
check "tilinpäätöstositteita ei ole" \
    "SELECT 1 WHERE NOT EXISTS (SELECT 1 FROM \"to\" WHERE toPaatostosite = 1);"
check "tuloslaskelman tai taseen tulostilille on kirjattu" \
    "SELECT v.viID FROM vi v WHERE v.vitlID IN (SELECT tlID FROM profit_acc)
        OR CAST(v.vitlID AS TEXT) = (SELECT setString FROM Settings WHERE setKey = 'VoittoTaseella');"
check "pankin tai kassan saldo menee jossain kohtaa negatiiviseksi" \
    "SELECT tl.tlNumero, t.toNumero, t.toPvm,
            (SELECT SUM(CASE v2.viTyyppi WHEN 'D' THEN v2.viArvo ELSE -v2.viArvo END) FROM vi v2 JOIN \"to\" t2 ON t2.toID = v2.vitoID
             WHERE v2.vitlID = tl.tlID AND t2.toNumero <= t.toNumero) AS saldo
     FROM \"to\" t, tl WHERE tl.tlNumero IN (1900, 1910, 1915) AND saldo < 0;"

# Result and balance sheet ---------------------------------------------------------------
totals=$(q "
  SELECT
    (SELECT coalesce(SUM(CASE viTyyppi WHEN 'K' THEN viArvo ELSE -viArvo END), 0) FROM vi JOIN tl ON tl.tlID = vitlID
       WHERE tl.tlNumero >= 3000 AND vitlID NOT IN (SELECT tlID FROM profit_acc)),
    (SELECT coalesce(SUM(CASE viTyyppi WHEN 'K' THEN viArvo ELSE -viArvo END), 0) FROM vi JOIN mr_acc a ON a.tlID = vitlID
       JOIN mr m ON m.mrID = a.mrID, tpl WHERE m.mrmaID = tpl.tulos AND m.mrIsVoitto = 0),
    (SELECT coalesce(SUM(CASE viTyyppi WHEN 'D' THEN viArvo ELSE -viArvo END), 0) FROM vi JOIN tl ON tl.tlID = vitlID
       WHERE tl.tlNumero BETWEEN 1000 AND 1999),
    (SELECT coalesce(SUM(CASE viTyyppi WHEN 'K' THEN viArvo ELSE -viArvo END), 0) FROM vi JOIN tl ON tl.tlID = vitlID
       WHERE tl.tlNumero BETWEEN 2000 AND 2999),
    (SELECT coalesce(SUM(CASE viTyyppi WHEN 'K' THEN viArvo ELSE 0 END), 0) FROM vi JOIN tl ON tl.tlID = vitlID
       WHERE tl.tlNumero >= 3000),
    (SELECT coalesce(SUM(CASE viTyyppi WHEN 'D' THEN viArvo ELSE 0 END), 0) FROM vi JOIN tl ON tl.tlID = vitlID
       WHERE tl.tlNumero >= 3000);")
read -r result result_tpl assets liab income expenses <<<"$(echo "$totals" | sed 's/ | / /g')"

# Money in ten-thousandths of a euro as "1234,50".
eur() {
    local v=$1 sign=''
    [ "$v" -lt 0 ] && { sign='-'; v=$((-v)); }
    printf '%s%d,%02d' "$sign" $((v / 10000)) $((v % 10000 / 100))
}

[ "$result" = "$result_tpl" ] || fail "tulos tileittäin ($result) ei ole sama kuin tuloslaskelmamallin riveiltä ($result_tpl)"
[ $((liab + result)) -eq "$assets" ] || fail "tase ei täsmää: vastaavaa $assets, vastattavaa + tulos $((liab + result))"

counts=$(sqlite3 -separator ' ' "$db" "SELECT (SELECT COUNT(*) FROM tl WHERE tlNumero > 0), (SELECT COUNT(*) FROM mr),
    (SELECT COUNT(*) FROM mr WHERE mrmaID = (SELECT maID FROM ma WHERE maTyyppi = 1)),
    (SELECT COUNT(*) FROM mr WHERE mrmaID = (SELECT maID FROM ma WHERE maTyyppi = 2)),
    (SELECT COUNT(*) FROM \"to\"), (SELECT COUNT(*) FROM \"to\" WHERE toPaatostosite = 1), (SELECT COUNT(*) FROM vi);")
read -r n_tl n_mr n_mr1 n_mr2 n_to n_close n_vi <<<"$counts"

echo "Tilivuosi $year (edellinen $prev)"
echo "Tilejä $n_tl; mallirivejä $n_mr (tuloslaskelma $n_mr1, tase $n_mr2)"
echo "Tositteita $n_to (avaustosite 1, tilinpäätöstositteita $n_close); vientejä $n_vi"
echo "Tuotot yhteensä           $(eur "$income")"
echo "Kulut yhteensä            $(eur "$expenses")"
echo "Tilikauden tulos          $(eur "$result")"
echo "Vastaavaa                 $(eur "$assets")"
echo "Vastattavaa ilman tulosta $(eur "$liab")"
echo "Vastattavaa + tulos       $(eur $((liab + result)))"

if [ "$failures" -ne 0 ]; then
    echo "check_data: $failures tarkistusta epäonnistui" >&2
    exit 1
fi
echo "check_data: kaikki tarkistukset kunnossa"
