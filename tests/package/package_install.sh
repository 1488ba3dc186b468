#!/usr/bin/env bash
# Vorkam's Debian package as a user gets it: CPack packs this build, the package is unpacked
# into a throw-away root (dpkg -x), and the installed programs run from there on the demo
# association. Nothing may be written into the installed files.
# Usage: package_install.sh BUILD_DIR
set -euo pipefail
build=$(realpath "$1")
work=$(mktemp -d)
pid=
trap '{ [ -z "$pid" ] || kill "$pid"; chmod -R u+w "$work"; rm -rf "$work"; } 2>/dev/null || true' EXIT
fail() { echo "VIRHE: $*" >&2; exit 1; }

(cd "$build" && cpack -G DEB -B "$work/pkg" -D CPACK_DEBIAN_COMPRESSION_TYPE=gzip) >"$work/cpack.log" 2>&1 \
  || { cat "$work/cpack.log"; fail "cpack ei tehnyt pakettia"; }
deb=$(ls "$work"/pkg/vorkam_*.deb)
depends=$(dpkg-deb --field "$deb" Depends)
for needed in libqt6core6 libqt6widgets6 libsqlite3-0 libhpdf libxlsxwriter libqt6sql6-sqlite fonts-liberation qt6-translations-l10n libfreetype6 zlib1g; do
  [[ $depends == *"$needed"* ]] || fail "riippuvuus $needed puuttuu: $depends"
done

root=$work/root
dpkg -x "$deb" "$root"
lib=$root/usr/lib/vorkam
for f in usr/lib/vorkam/vorkam usr/lib/vorkam/vorkam_report usr/lib/vorkam/vorkam_jetread usr/lib/vorkam/demo1.mdb \
  usr/lib/vorkam/mallit/perusmalli.mdb usr/lib/vorkam/tilit.rpt usr/lib/vorkam/kayttoohje/index.html \
  usr/share/applications/vorkam.desktop usr/share/icons/hicolor/scalable/apps/vorkam.svg \
  usr/share/icons/hicolor/48x48/apps/vorkam.png usr/share/metainfo/fi.vorkam.Vorkam.metainfo.xml \
  usr/share/man/man1/vorkam_report.1.gz usr/share/doc/vorkam/copyright; do
  [ -f "$root/$f" ] || fail "paketista puuttuu $f"
done
for program in vorkam vorkam_report; do
  [ "$(readlink "$root/usr/bin/$program")" = "../lib/vorkam/$program" ] || fail "/usr/bin/$program ei ole linkki"
done
if command -v desktop-file-validate >/dev/null; then
  desktop-file-validate "$root/usr/share/applications/vorkam.desktop"
fi
if command -v appstreamcli >/dev/null; then
  appstreamcli validate --no-net --explain "$root/usr/share/metainfo/fi.vorkam.Vorkam.metainfo.xml" >"$work/as.log" 2>&1 \
    || { cat "$work/as.log"; fail "AppStream-kuvaus ei kelpaa"; }
fi
zcat "$root/usr/share/man/man1/vorkam_report.1.gz" | grep -q '^\.TH VORKAM_REPORT 1' || fail "ohjesivu on rikki"

# From here on the installed files may only be read.
find "$root" -exec touch -h -d '2000-01-01' {} +
chmod -R a-w "$root"
home=$work/home
mkdir -p "$home"
export HOME=$home XDG_CONFIG_HOME=$home/.config XDG_DATA_HOME=$home/.local/share QT_QPA_PLATFORM=offscreen

# A report from the installed program's folder, the shipped demo opened for reading only.
"$root/usr/bin/vorkam_report" "$lib/demo1.mdb" tilit --csv "$work/tilit.csv"
grep -q '1910' "$work/tilit.csv" || fail "tililuettelossa ei ole tiliä 1910"
"$root/usr/bin/vorkam_report" --version | grep -q "^vorkam_report " || fail "--version ei kerro versiota"
# Statements write their work tables: a copy of the demo, as a user's own books.
cp "$lib/demo1.mdb" "$work/seura.mdb"
chmod u+w "$work/seura.mdb"
"$root/usr/bin/vorkam_report" "$work/seura.mdb" tuloslaskelma --pdf "$work/tulos.pdf"
head -c 5 "$work/tulos.pdf" | grep -q '%PDF-' || fail "tuloslaskelma ei ole PDF"
# Old Jet books convert with the installed reading program.
jet=$(dirname "$0")/../../../shared/fixtures/jet/seura-jet4.mdb
if [ -f "$jet" ]; then
  cp "$jet" "$work/vanha.mdb"
  chmod u+w "$work/vanha.mdb"
  "$root/usr/bin/vorkam_report" "$work/vanha.mdb" muunna >"$work/muunna.log" 2>&1 || { cat "$work/muunna.log"; fail "Jet-kirjanpidon muunnos epäonnistui"; }
fi

# The first start copies the demo into the user's own folder and opens it from there.
"$root/usr/bin/vorkam" >"$work/vorkam.log" 2>&1 &
pid=$!
own=$home/Documents/Vorkam/demo1.mdb
for _ in $(seq 1 120); do
  [ -f "$own" ] && grep -q "^Database=$own" "$XDG_CONFIG_HOME/Vorkam/lxvorkam.ini" 2>/dev/null && break
  kill -0 "$pid" 2>/dev/null || { cat "$work/vorkam.log"; fail "vorkam päättyi kesken käynnistyksen"; }
  sleep 0.5
done
kill "$pid" 2>/dev/null || true
wait "$pid" 2>/dev/null || true
[ -f "$own" ] || fail "ensimmäinen käynnistys ei kopioinut esimerkkiyhdistystä: $own"
changed=$(find "$root" -newermt '2000-01-02' -print)
[ -z "$changed" ] || fail "asennettuja tiedostoja muuttui: $changed"
echo "paketti $(basename "$deb") kunnossa"
