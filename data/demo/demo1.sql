-- Esimerkkiyhdistys ry: harrastusyhdistyksen kirjanpito yhdeltä tilikaudelta.
-- Ladataan yhdistyksen mallin (perusmalli.sql) päälle. @VUOSI@ on kuluva ja @EDVUOSI@
-- edellinen kalenterivuosi. Rahamäärät ovat euron kymmenestuhannesosina (12,50 = 125000).

-- The model gives the fiscal year and a placeholder name; the demo has a name of its own.
UPDATE Settings SET setString = 'Esimerkkiyhdistys ry' WHERE setSection = 'VORKAM' AND setKey = 'Seurannimi';

-- Yhdistyksen omat nimet mallin yleistileille.
UPDATE tl SET tlNimi = 'Kurssimaksut' WHERE tlID = 32;
UPDATE tl SET tlNimi = 'Tapahtumien pääsymaksut' WHERE tlID = 33;
UPDATE tl SET tlNimi = 'Retkien osallistumismaksut' WHERE tlID = 34;
UPDATE tl SET tlNimi = 'Tilavuokrat' WHERE tlID = 42;
UPDATE tl SET tlNimi = 'Kurssien materiaalit' WHERE tlID = 43;
UPDATE tl SET tlNimi = 'Tapahtumien kulut' WHERE tlID = 44;
UPDATE tl SET tlNimi = 'Retkien kulut' WHERE tlID = 45;
UPDATE tl SET tlNimi = 'Tiedotus ja jäsenlehti' WHERE tlID = 46;
UPDATE tl SET tlNimi = 'Toiminnantarkastus' WHERE tlID = 47;
UPDATE tl SET tlNimi = 'Koulutus' WHERE tlID = 48;
UPDATE tl SET tlNimi = 'Muistamiset' WHERE tlID = 49;
UPDATE tl SET tlNimi = 'Kirpputorin tuotot' WHERE tlID = 60;

-- Tilinavaus: edellisen tilikauden loppusaldot.
INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (1, 0, '@VUOSI@-01-01', 'Tilinavausviennit', 1, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(1, 1, 12, 'D', 48500000, 'Tilinavausviennit', 1, 0, 0),
(2, 1, 11, 'D', 1500000, 'Tilinavausviennit', 1, 0, 0),
(3, 1, 13, 'D', 20000000, 'Tilinavausviennit', 1, 0, 0),
(4, 1, 8, 'D', 1500000, 'Tilinavausviennit', 1, 0, 0),
(5, 1, 2, 'D', 4800000, 'Tilinavausviennit', 1, 0, 0),
(6, 1, 26, 'K', 3200000, 'Tilinavausviennit', 1, 0, 0),
(7, 1, 14, 'K', 20000000, 'Tilinavausviennit', 1, 0, 0),
(8, 1, 18, 'K', 53100000, 'Tilinavausviennit', 1, 0, 0);

-- Tammikuu.
INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (2, 1, '@VUOSI@-01-04', 'Kerhohuoneen vuokra, tammikuu', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(9, 2, 42, 'D', 2650000, 'Kerhohuoneen vuokra, tammikuu', 0, 0, 0),
(10, 2, 12, 'K', 2650000, 'Kerhohuoneen vuokra, tammikuu', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (3, 2, '@VUOSI@-01-09', 'Jäsenmaksusaamiset edelliseltä vuodelta', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(11, 3, 12, 'D', 1500000, 'Jäsenmaksusaamiset edelliseltä vuodelta', 0, 0, 0),
(12, 3, 8, 'K', 1500000, 'Jäsenmaksusaamiset edelliseltä vuodelta', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (4, 3, '@VUOSI@-01-12', 'Pikkujoulun pitopalvelulasku edelliseltä vuodelta', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(13, 4, 26, 'D', 3200000, 'Pikkujoulun pitopalvelulasku edelliseltä vuodelta', 0, 0, 0),
(14, 4, 12, 'K', 3200000, 'Pikkujoulun pitopalvelulasku edelliseltä vuodelta', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (5, 4, '@VUOSI@-01-19', 'Yhdistyksen vastuu- ja tapaturmavakuutus', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(15, 5, 53, 'D', 1854000, 'Yhdistyksen vastuu- ja tapaturmavakuutus', 0, 0, 0),
(16, 5, 12, 'K', 1854000, 'Yhdistyksen vastuu- ja tapaturmavakuutus', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (6, 5, '@VUOSI@-01-23', 'Hallituksen kokous, kahvitarjoilu', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(17, 6, 52, 'D', 185000, 'Hallituksen kokous, kahvitarjoilu', 0, 0, 0),
(18, 6, 11, 'K', 185000, 'Hallituksen kokous, kahvitarjoilu', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (7, 6, '@VUOSI@-01-27', 'Keskusjärjestön jäsenmaksu, 120 jäsentä', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(19, 7, 54, 'D', 2400000, 'Keskusjärjestön jäsenmaksu, 120 jäsentä', 0, 0, 0),
(20, 7, 12, 'K', 2400000, 'Keskusjärjestön jäsenmaksu, 120 jäsentä', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (8, 7, '@VUOSI@-01-31', 'Pankin palvelumaksut, tammikuu', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(21, 8, 68, 'D', 59000, 'Pankin palvelumaksut, tammikuu', 0, 0, 0),
(22, 8, 12, 'K', 59000, 'Pankin palvelumaksut, tammikuu', 0, 0, 0);

-- Helmikuu.
INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (9, 8, '@VUOSI@-02-03', 'Kerhohuoneen vuokra, helmikuu', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(23, 9, 42, 'D', 2650000, 'Kerhohuoneen vuokra, helmikuu', 0, 0, 0),
(24, 9, 12, 'K', 2650000, 'Kerhohuoneen vuokra, helmikuu', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (10, 9, '@VUOSI@-02-06', 'Postimerkit jäsenkirjeeseen', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(25, 10, 51, 'D', 224000, 'Postimerkit jäsenkirjeeseen', 0, 0, 0),
(26, 10, 11, 'K', 224000, 'Postimerkit jäsenkirjeeseen', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (11, 10, '@VUOSI@-02-10', 'Jäsenmaksut, erä 1 (50 kpl)', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(27, 11, 12, 'D', 12500000, 'Jäsenmaksut, erä 1 (50 kpl)', 0, 0, 0),
(28, 11, 56, 'K', 12500000, 'Jäsenmaksut, erä 1 (50 kpl)', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (12, 11, '@VUOSI@-02-14', 'Kevään valokuvauskurssi, kurssimaksut 12 hlöä', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(29, 12, 12, 'D', 7800000, 'Kevään valokuvauskurssi, kurssimaksut 12 hlöä', 0, 0, 0),
(30, 12, 32, 'K', 7800000, 'Kevään valokuvauskurssi, kurssimaksut 12 hlöä', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (13, 12, '@VUOSI@-02-17', 'Kotisivujen verkkotunnus ja palvelin', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(31, 13, 46, 'D', 960000, 'Kotisivujen verkkotunnus ja palvelin', 0, 0, 0),
(32, 13, 12, 'K', 960000, 'Kotisivujen verkkotunnus ja palvelin', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (14, 13, '@VUOSI@-02-20', 'Jäsenmaksut, erä 2 (32 kpl)', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(33, 14, 12, 'D', 8000000, 'Jäsenmaksut, erä 2 (32 kpl)', 0, 0, 0),
(34, 14, 56, 'K', 8000000, 'Jäsenmaksut, erä 2 (32 kpl)', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (15, 14, '@VUOSI@-02-24', 'Kevään valokuvauskurssi, materiaalit', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(35, 15, 43, 'D', 1486000, 'Kevään valokuvauskurssi, materiaalit', 0, 0, 0),
(36, 15, 12, 'K', 1486000, 'Kevään valokuvauskurssi, materiaalit', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (16, 15, '@VUOSI@-02-28', 'Pankin palvelumaksut, helmikuu', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(37, 16, 68, 'D', 59000, 'Pankin palvelumaksut, helmikuu', 0, 0, 0),
(38, 16, 12, 'K', 59000, 'Pankin palvelumaksut, helmikuu', 0, 0, 0);

-- Maaliskuu.
INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (17, 16, '@VUOSI@-03-03', 'Kerhohuoneen vuokra, maaliskuu', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(39, 17, 42, 'D', 2650000, 'Kerhohuoneen vuokra, maaliskuu', 0, 0, 0),
(40, 17, 12, 'K', 2650000, 'Kerhohuoneen vuokra, maaliskuu', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (18, 17, '@VUOSI@-03-06', 'Jäsenmaksut, erä 3 (18 kpl)', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(41, 18, 12, 'D', 4500000, 'Jäsenmaksut, erä 3 (18 kpl)', 0, 0, 0),
(42, 18, 56, 'K', 4500000, 'Jäsenmaksut, erä 3 (18 kpl)', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (19, 18, '@VUOSI@-03-10', 'Kannatusjäsenmaksu, Kyläkauppa', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(43, 19, 12, 'D', 1000000, 'Kannatusjäsenmaksu, Kyläkauppa', 0, 0, 0),
(44, 19, 57, 'K', 1000000, 'Kannatusjäsenmaksu, Kyläkauppa', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (20, 19, '@VUOSI@-03-14', 'Kevään valokuvauskurssi, ohjaajan palkkio', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(45, 20, 39, 'D', 6000000, 'Kevään valokuvauskurssi, ohjaajan palkkio', 0, 0, 0),
(46, 20, 41, 'D', 112200, 'Kevään valokuvauskurssi, ohjaajan palkkio', 0, 0, 0),
(47, 20, 29, 'K', 1200000, 'Kevään valokuvauskurssi, ohjaajan palkkio', 0, 0, 0),
(48, 20, 30, 'K', 112200, 'Kevään valokuvauskurssi, ohjaajan palkkio', 0, 0, 0),
(49, 20, 12, 'K', 4800000, 'Kevään valokuvauskurssi, ohjaajan palkkio', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (21, 20, '@VUOSI@-03-19', 'Kevätkokous, kahvitarjoilu', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(50, 21, 52, 'D', 648000, 'Kevätkokous, kahvitarjoilu', 0, 0, 0),
(51, 21, 11, 'K', 648000, 'Kevätkokous, kahvitarjoilu', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (22, 21, '@VUOSI@-03-25', 'Kevätkokouksen pöytäkirjan ja jäsenkirjeen postitus', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(52, 22, 51, 'D', 765000, 'Kevätkokouksen pöytäkirjan ja jäsenkirjeen postitus', 0, 0, 0),
(53, 22, 12, 'K', 765000, 'Kevätkokouksen pöytäkirjan ja jäsenkirjeen postitus', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (23, 22, '@VUOSI@-03-31', 'Pankin palvelumaksut, maaliskuu', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(54, 23, 68, 'D', 59000, 'Pankin palvelumaksut, maaliskuu', 0, 0, 0),
(55, 23, 12, 'K', 59000, 'Pankin palvelumaksut, maaliskuu', 0, 0, 0);

-- Huhtikuu.
INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (24, 23, '@VUOSI@-04-03', 'Kerhohuoneen vuokra, huhtikuu', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(56, 24, 42, 'D', 2650000, 'Kerhohuoneen vuokra, huhtikuu', 0, 0, 0),
(57, 24, 12, 'K', 2650000, 'Kerhohuoneen vuokra, huhtikuu', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (25, 24, '@VUOSI@-04-07', 'Jäsenmaksut, erä 4 (14 kpl)', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(58, 25, 12, 'D', 3500000, 'Jäsenmaksut, erä 4 (14 kpl)', 0, 0, 0),
(59, 25, 56, 'K', 3500000, 'Jäsenmaksut, erä 4 (14 kpl)', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (26, 25, '@VUOSI@-04-11', 'Ennakonpidätys ja sosiaaliturvamaksu, maaliskuu', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(60, 26, 29, 'D', 1200000, 'Ennakonpidätys ja sosiaaliturvamaksu, maaliskuu', 0, 0, 0),
(61, 26, 30, 'D', 112200, 'Ennakonpidätys ja sosiaaliturvamaksu, maaliskuu', 0, 0, 0),
(62, 26, 12, 'K', 1312200, 'Ennakonpidätys ja sosiaaliturvamaksu, maaliskuu', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (27, 26, '@VUOSI@-04-15', 'Kunnan toiminta-avustus', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(63, 27, 12, 'D', 12000000, 'Kunnan toiminta-avustus', 0, 0, 0),
(64, 27, 70, 'K', 12000000, 'Kunnan toiminta-avustus', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (28, 27, '@VUOSI@-04-22', 'Jäsenlehden painatus, kevätnumero', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(65, 28, 46, 'D', 2140000, 'Jäsenlehden painatus, kevätnumero', 0, 0, 0),
(66, 28, 12, 'K', 2140000, 'Jäsenlehden painatus, kevätnumero', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (29, 28, '@VUOSI@-04-24', 'Kevätkirpputorin ilmoitus paikallislehdessä', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(67, 29, 63, 'D', 480000, 'Kevätkirpputorin ilmoitus paikallislehdessä', 0, 0, 0),
(68, 29, 12, 'K', 480000, 'Kevätkirpputorin ilmoitus paikallislehdessä', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (30, 29, '@VUOSI@-04-27', 'Kevätkirpputori, pöytävuokrat 24 kpl', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(69, 30, 11, 'D', 2400000, 'Kevätkirpputori, pöytävuokrat 24 kpl', 0, 0, 0),
(70, 30, 60, 'K', 2400000, 'Kevätkirpputori, pöytävuokrat 24 kpl', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (31, 30, '@VUOSI@-04-30', 'Pankin palvelumaksut, huhtikuu', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(71, 31, 68, 'D', 59000, 'Pankin palvelumaksut, huhtikuu', 0, 0, 0),
(72, 31, 12, 'K', 59000, 'Pankin palvelumaksut, huhtikuu', 0, 0, 0);

-- Toukokuu.
INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (32, 31, '@VUOSI@-05-03', 'Kerhohuoneen vuokra, toukokuu', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(73, 32, 42, 'D', 2650000, 'Kerhohuoneen vuokra, toukokuu', 0, 0, 0),
(74, 32, 12, 'K', 2650000, 'Kerhohuoneen vuokra, toukokuu', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (33, 32, '@VUOSI@-05-05', 'Käteisvarojen talletus pankkiin', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(75, 33, 12, 'D', 2000000, 'Käteisvarojen talletus pankkiin', 0, 0, 0),
(76, 33, 11, 'K', 2000000, 'Käteisvarojen talletus pankkiin', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (34, 33, '@VUOSI@-05-08', 'Kunnan kohdeavustus kesäjuhlaan', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(77, 34, 12, 'D', 5000000, 'Kunnan kohdeavustus kesäjuhlaan', 0, 0, 0),
(78, 34, 37, 'K', 5000000, 'Kunnan kohdeavustus kesäjuhlaan', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (35, 34, '@VUOSI@-05-12', 'Jäsenmaksut, erä 5 (6 kpl)', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(79, 35, 12, 'D', 1500000, 'Jäsenmaksut, erä 5 (6 kpl)', 0, 0, 0),
(80, 35, 56, 'K', 1500000, 'Jäsenmaksut, erä 5 (6 kpl)', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (36, 35, '@VUOSI@-05-16', 'Videotykin ja valkokankaan hankinta', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(81, 36, 2, 'D', 9600000, 'Videotykin ja valkokankaan hankinta', 0, 0, 0),
(82, 36, 12, 'K', 9600000, 'Videotykin ja valkokankaan hankinta', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (37, 36, '@VUOSI@-05-22', 'Kesäretki Hämeenlinnaan, osallistumismaksut 28 hlöä', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(83, 37, 12, 'D', 12600000, 'Kesäretki Hämeenlinnaan, osallistumismaksut 28 hlöä', 0, 0, 0),
(84, 37, 34, 'K', 12600000, 'Kesäretki Hämeenlinnaan, osallistumismaksut 28 hlöä', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (38, 37, '@VUOSI@-05-28', 'Hallituksen kokous, kahvitarjoilu', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(85, 38, 52, 'D', 213000, 'Hallituksen kokous, kahvitarjoilu', 0, 0, 0),
(86, 38, 11, 'K', 213000, 'Hallituksen kokous, kahvitarjoilu', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (39, 38, '@VUOSI@-05-31', 'Pankin palvelumaksut, toukokuu', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(87, 39, 68, 'D', 59000, 'Pankin palvelumaksut, toukokuu', 0, 0, 0),
(88, 39, 12, 'K', 59000, 'Pankin palvelumaksut, toukokuu', 0, 0, 0);

-- Kesäkuu.
INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (40, 39, '@VUOSI@-06-03', 'Kerhohuoneen vuokra, kesäkuu', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(89, 40, 42, 'D', 2650000, 'Kerhohuoneen vuokra, kesäkuu', 0, 0, 0),
(90, 40, 12, 'K', 2650000, 'Kerhohuoneen vuokra, kesäkuu', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (41, 40, '@VUOSI@-06-07', 'Kesäretki, bussikuljetus (lasku)', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(91, 41, 45, 'D', 8800000, 'Kesäretki, bussikuljetus (lasku)', 0, 0, 0),
(92, 41, 26, 'K', 8800000, 'Kesäretki, bussikuljetus (lasku)', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (42, 41, '@VUOSI@-06-07', 'Kesäretki, linnan pääsyliput 28 kpl', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(93, 42, 45, 'D', 3080000, 'Kesäretki, linnan pääsyliput 28 kpl', 0, 0, 0),
(94, 42, 12, 'K', 3080000, 'Kesäretki, linnan pääsyliput 28 kpl', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (43, 42, '@VUOSI@-06-12', 'Kesäjuhlan esiintyjä, Pelimannit', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(95, 43, 44, 'D', 4500000, 'Kesäjuhlan esiintyjä, Pelimannit', 0, 0, 0),
(96, 43, 12, 'K', 4500000, 'Kesäjuhlan esiintyjä, Pelimannit', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (44, 43, '@VUOSI@-06-13', 'Kesäjuhlan tarvikkeet ja kahvion ostokset', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(97, 44, 44, 'D', 1264000, 'Kesäjuhlan tarvikkeet ja kahvion ostokset', 0, 0, 0),
(98, 44, 62, 'D', 1643000, 'Kesäjuhlan tarvikkeet ja kahvion ostokset', 0, 0, 0),
(99, 44, 12, 'K', 2907000, 'Kesäjuhlan tarvikkeet ja kahvion ostokset', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (45, 44, '@VUOSI@-06-15', 'Kesäjuhla, pääsymaksut ja kahvion myynti', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(100, 45, 11, 'D', 11480000, 'Kesäjuhla, pääsymaksut ja kahvion myynti', 0, 0, 0),
(101, 45, 33, 'K', 7800000, 'Kesäjuhla, pääsymaksut ja kahvion myynti', 0, 0, 0),
(102, 45, 59, 'K', 3680000, 'Kesäjuhla, pääsymaksut ja kahvion myynti', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (46, 45, '@VUOSI@-06-17', 'Käteisvarojen talletus pankkiin', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(103, 46, 12, 'D', 10000000, 'Käteisvarojen talletus pankkiin', 0, 0, 0),
(104, 46, 11, 'K', 10000000, 'Käteisvarojen talletus pankkiin', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (47, 46, '@VUOSI@-06-18', 'Kesäjuhla, talkoolaisen kulukorvaus (tarvikkeet)', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(105, 47, 44, 'D', 428000, 'Kesäjuhla, talkoolaisen kulukorvaus (tarvikkeet)', 0, 0, 0),
(106, 47, 12, 'K', 428000, 'Kesäjuhla, talkoolaisen kulukorvaus (tarvikkeet)', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (48, 47, '@VUOSI@-06-21', 'Kesäretken bussilaskun maksu', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(107, 48, 26, 'D', 8800000, 'Kesäretken bussilaskun maksu', 0, 0, 0),
(108, 48, 12, 'K', 8800000, 'Kesäretken bussilaskun maksu', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (49, 48, '@VUOSI@-06-30', 'Pankin palvelumaksut, kesäkuu', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(109, 49, 68, 'D', 59000, 'Pankin palvelumaksut, kesäkuu', 0, 0, 0),
(110, 49, 12, 'K', 59000, 'Pankin palvelumaksut, kesäkuu', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (50, 49, '@VUOSI@-06-30', 'Säästötilin korko, alkuvuosi', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(111, 50, 13, 'D', 98400, 'Säästötilin korko, alkuvuosi', 0, 0, 0),
(112, 50, 65, 'K', 98400, 'Säästötilin korko, alkuvuosi', 0, 0, 0);

-- Heinäkuu.
INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (51, 50, '@VUOSI@-07-03', 'Kerhohuoneen vuokra, heinäkuu', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(113, 51, 42, 'D', 2650000, 'Kerhohuoneen vuokra, heinäkuu', 0, 0, 0),
(114, 51, 12, 'K', 2650000, 'Kerhohuoneen vuokra, heinäkuu', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (52, 51, '@VUOSI@-07-10', 'Lahjoitus kesäjuhlan tuotoksi, Virtasen perhe', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(115, 52, 12, 'D', 2000000, 'Lahjoitus kesäjuhlan tuotoksi, Virtasen perhe', 0, 0, 0),
(116, 52, 58, 'K', 2000000, 'Lahjoitus kesäjuhlan tuotoksi, Virtasen perhe', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (53, 52, '@VUOSI@-07-15', 'Jäsenmaksut, myöhästyneet (4 kpl)', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(117, 53, 12, 'D', 1000000, 'Jäsenmaksut, myöhästyneet (4 kpl)', 0, 0, 0),
(118, 53, 56, 'K', 1000000, 'Jäsenmaksut, myöhästyneet (4 kpl)', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (54, 53, '@VUOSI@-07-31', 'Pankin palvelumaksut, heinäkuu', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(119, 54, 68, 'D', 59000, 'Pankin palvelumaksut, heinäkuu', 0, 0, 0),
(120, 54, 12, 'K', 59000, 'Pankin palvelumaksut, heinäkuu', 0, 0, 0);

-- Elokuu.
INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (55, 54, '@VUOSI@-08-04', 'Kerhohuoneen vuokra, elokuu', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(121, 55, 42, 'D', 2650000, 'Kerhohuoneen vuokra, elokuu', 0, 0, 0),
(122, 55, 12, 'K', 2650000, 'Kerhohuoneen vuokra, elokuu', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (56, 55, '@VUOSI@-08-08', 'Syyskauden ohjelmaesite, painatus', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(123, 56, 46, 'D', 1650000, 'Syyskauden ohjelmaesite, painatus', 0, 0, 0),
(124, 56, 12, 'K', 1650000, 'Syyskauden ohjelmaesite, painatus', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (57, 56, '@VUOSI@-08-15', 'Syksyn valokuvauskurssi, kurssimaksut 10 hlöä', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(125, 57, 12, 'D', 6500000, 'Syksyn valokuvauskurssi, kurssimaksut 10 hlöä', 0, 0, 0),
(126, 57, 32, 'K', 6500000, 'Syksyn valokuvauskurssi, kurssimaksut 10 hlöä', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (58, 57, '@VUOSI@-08-22', 'Syksyn valokuvauskurssi, materiaalit', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(127, 58, 43, 'D', 1325000, 'Syksyn valokuvauskurssi, materiaalit', 0, 0, 0),
(128, 58, 12, 'K', 1325000, 'Syksyn valokuvauskurssi, materiaalit', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (59, 58, '@VUOSI@-08-26', 'Kopiopaperi ja toimistotarvikkeet', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(129, 59, 51, 'D', 587000, 'Kopiopaperi ja toimistotarvikkeet', 0, 0, 0),
(130, 59, 12, 'K', 587000, 'Kopiopaperi ja toimistotarvikkeet', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (60, 59, '@VUOSI@-08-29', 'Pankin palvelumaksut, elokuu', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(131, 60, 68, 'D', 59000, 'Pankin palvelumaksut, elokuu', 0, 0, 0),
(132, 60, 12, 'K', 59000, 'Pankin palvelumaksut, elokuu', 0, 0, 0);

-- Syyskuu.
INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (61, 60, '@VUOSI@-09-02', 'Kerhohuoneen vuokra, syyskuu', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(133, 61, 42, 'D', 2650000, 'Kerhohuoneen vuokra, syyskuu', 0, 0, 0),
(134, 61, 12, 'K', 2650000, 'Kerhohuoneen vuokra, syyskuu', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (62, 61, '@VUOSI@-09-05', 'Jäsenmaksut, uudet jäsenet (8 kpl)', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(135, 62, 12, 'D', 2000000, 'Jäsenmaksut, uudet jäsenet (8 kpl)', 0, 0, 0),
(136, 62, 56, 'K', 2000000, 'Jäsenmaksut, uudet jäsenet (8 kpl)', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (63, 62, '@VUOSI@-09-06', 'Avoimet ovet, kahvion ostokset', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(137, 63, 62, 'D', 589000, 'Avoimet ovet, kahvion ostokset', 0, 0, 0),
(138, 63, 12, 'K', 589000, 'Avoimet ovet, kahvion ostokset', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (64, 63, '@VUOSI@-09-07', 'Avoimet ovet, kahvion myynti', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(139, 64, 11, 'D', 1420000, 'Avoimet ovet, kahvion myynti', 0, 0, 0),
(140, 64, 59, 'K', 1420000, 'Avoimet ovet, kahvion myynti', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (65, 64, '@VUOSI@-09-12', 'Kannatusjäsenmaksu, Rakennusliike Mäkelä', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(141, 65, 12, 'D', 1000000, 'Kannatusjäsenmaksu, Rakennusliike Mäkelä', 0, 0, 0),
(142, 65, 57, 'K', 1000000, 'Kannatusjäsenmaksu, Rakennusliike Mäkelä', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (66, 65, '@VUOSI@-09-18', 'Hallituksen kokous, kahvitarjoilu', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(143, 66, 52, 'D', 196000, 'Hallituksen kokous, kahvitarjoilu', 0, 0, 0),
(144, 66, 11, 'K', 196000, 'Hallituksen kokous, kahvitarjoilu', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (67, 66, '@VUOSI@-09-26', 'Rahastonhoitajan koulutuspäivä, osallistumismaksu ja matkat', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(145, 67, 48, 'D', 900000, 'Rahastonhoitajan koulutuspäivä, osallistumismaksu ja matkat', 0, 0, 0),
(146, 67, 50, 'D', 864000, 'Rahastonhoitajan koulutuspäivä, osallistumismaksu ja matkat', 0, 0, 0),
(147, 67, 12, 'K', 1764000, 'Rahastonhoitajan koulutuspäivä, osallistumismaksu ja matkat', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (68, 67, '@VUOSI@-09-30', 'Pankin palvelumaksut, syyskuu', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(148, 68, 68, 'D', 59000, 'Pankin palvelumaksut, syyskuu', 0, 0, 0),
(149, 68, 12, 'K', 59000, 'Pankin palvelumaksut, syyskuu', 0, 0, 0);

-- Lokakuu.
INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (69, 68, '@VUOSI@-10-02', 'Kerhohuoneen vuokra, lokakuu', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(150, 69, 42, 'D', 2650000, 'Kerhohuoneen vuokra, lokakuu', 0, 0, 0),
(151, 69, 12, 'K', 2650000, 'Kerhohuoneen vuokra, lokakuu', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (70, 69, '@VUOSI@-10-06', 'Käteisvarojen talletus pankkiin', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(152, 70, 12, 'D', 1000000, 'Käteisvarojen talletus pankkiin', 0, 0, 0),
(153, 70, 11, 'K', 1000000, 'Käteisvarojen talletus pankkiin', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (71, 70, '@VUOSI@-10-10', 'Syksyn valokuvauskurssi, ohjaajan palkkio', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(154, 71, 39, 'D', 5000000, 'Syksyn valokuvauskurssi, ohjaajan palkkio', 0, 0, 0),
(155, 71, 41, 'D', 93500, 'Syksyn valokuvauskurssi, ohjaajan palkkio', 0, 0, 0),
(156, 71, 29, 'K', 1000000, 'Syksyn valokuvauskurssi, ohjaajan palkkio', 0, 0, 0),
(157, 71, 30, 'K', 93500, 'Syksyn valokuvauskurssi, ohjaajan palkkio', 0, 0, 0),
(158, 71, 12, 'K', 4000000, 'Syksyn valokuvauskurssi, ohjaajan palkkio', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (72, 71, '@VUOSI@-10-14', 'Teatteriretki, osallistumismaksut 22 hlöä', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(159, 72, 12, 'D', 8360000, 'Teatteriretki, osallistumismaksut 22 hlöä', 0, 0, 0),
(160, 72, 34, 'K', 8360000, 'Teatteriretki, osallistumismaksut 22 hlöä', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (73, 72, '@VUOSI@-10-24', 'Teatteriretki, liput ja bussikuljetus', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(161, 73, 45, 'D', 6380000, 'Teatteriretki, liput ja bussikuljetus', 0, 0, 0),
(162, 73, 45, 'D', 2400000, 'Teatteriretki, liput ja bussikuljetus', 0, 0, 0),
(163, 73, 12, 'K', 8780000, 'Teatteriretki, liput ja bussikuljetus', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (74, 73, '@VUOSI@-10-30', 'Valokuvanäyttelyn kehykset ja ripustustarvikkeet', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(164, 74, 44, 'D', 2368000, 'Valokuvanäyttelyn kehykset ja ripustustarvikkeet', 0, 0, 0),
(165, 74, 12, 'K', 2368000, 'Valokuvanäyttelyn kehykset ja ripustustarvikkeet', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (75, 74, '@VUOSI@-10-31', 'Pankin palvelumaksut, lokakuu', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(166, 75, 68, 'D', 59000, 'Pankin palvelumaksut, lokakuu', 0, 0, 0),
(167, 75, 12, 'K', 59000, 'Pankin palvelumaksut, lokakuu', 0, 0, 0);

-- Marraskuu.
INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (76, 75, '@VUOSI@-11-04', 'Kerhohuoneen vuokra, marraskuu', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(168, 76, 42, 'D', 2650000, 'Kerhohuoneen vuokra, marraskuu', 0, 0, 0),
(169, 76, 12, 'K', 2650000, 'Kerhohuoneen vuokra, marraskuu', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (77, 76, '@VUOSI@-11-06', 'Syyskokouksen kokouskutsun postitus', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(170, 77, 51, 'D', 684000, 'Syyskokouksen kokouskutsun postitus', 0, 0, 0),
(171, 77, 12, 'K', 684000, 'Syyskokouksen kokouskutsun postitus', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (78, 77, '@VUOSI@-11-11', 'Ennakonpidätys ja sosiaaliturvamaksu, lokakuu', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(172, 78, 29, 'D', 1000000, 'Ennakonpidätys ja sosiaaliturvamaksu, lokakuu', 0, 0, 0),
(173, 78, 30, 'D', 93500, 'Ennakonpidätys ja sosiaaliturvamaksu, lokakuu', 0, 0, 0),
(174, 78, 12, 'K', 1093500, 'Ennakonpidätys ja sosiaaliturvamaksu, lokakuu', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (79, 78, '@VUOSI@-11-18', 'Videotykin vuokraus koulun vanhempainyhdistykselle, lasku', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(175, 79, 7, 'D', 800000, 'Videotykin vuokraus koulun vanhempainyhdistykselle, lasku', 0, 0, 0),
(176, 79, 38, 'K', 800000, 'Videotykin vuokraus koulun vanhempainyhdistykselle, lasku', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (80, 79, '@VUOSI@-11-20', 'Syyskokous, kahvitarjoilu', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(177, 80, 52, 'D', 724000, 'Syyskokous, kahvitarjoilu', 0, 0, 0),
(178, 80, 11, 'K', 724000, 'Syyskokous, kahvitarjoilu', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (81, 80, '@VUOSI@-11-25', 'Jäsenlehden painatus, syysnumero', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(179, 81, 46, 'D', 1980000, 'Jäsenlehden painatus, syysnumero', 0, 0, 0),
(180, 81, 12, 'K', 1980000, 'Jäsenlehden painatus, syysnumero', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (82, 81, '@VUOSI@-11-28', 'Pankin palvelumaksut, marraskuu', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(181, 82, 68, 'D', 59000, 'Pankin palvelumaksut, marraskuu', 0, 0, 0),
(182, 82, 12, 'K', 59000, 'Pankin palvelumaksut, marraskuu', 0, 0, 0);

-- Joulukuu.
INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (83, 82, '@VUOSI@-12-02', 'Kerhohuoneen vuokra, joulukuu', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(183, 83, 42, 'D', 2650000, 'Kerhohuoneen vuokra, joulukuu', 0, 0, 0),
(184, 83, 12, 'K', 2650000, 'Kerhohuoneen vuokra, joulukuu', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (84, 83, '@VUOSI@-12-05', 'Pikkujoulu, osallistumismaksut 40 hlöä', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(185, 84, 11, 'D', 6000000, 'Pikkujoulu, osallistumismaksut 40 hlöä', 0, 0, 0),
(186, 84, 33, 'K', 6000000, 'Pikkujoulu, osallistumismaksut 40 hlöä', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (85, 84, '@VUOSI@-12-09', 'Pikkujoulun pitopalvelu', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(187, 85, 44, 'D', 7200000, 'Pikkujoulun pitopalvelu', 0, 0, 0),
(188, 85, 12, 'K', 7200000, 'Pikkujoulun pitopalvelu', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (86, 85, '@VUOSI@-12-10', 'Käteisvarojen talletus pankkiin', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(189, 86, 12, 'D', 5000000, 'Käteisvarojen talletus pankkiin', 0, 0, 0),
(190, 86, 11, 'K', 5000000, 'Käteisvarojen talletus pankkiin', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (87, 86, '@VUOSI@-12-12', 'Videotykin vuokrauslaskun suoritus', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(191, 87, 12, 'D', 800000, 'Videotykin vuokrauslaskun suoritus', 0, 0, 0),
(192, 87, 7, 'K', 800000, 'Videotykin vuokrauslaskun suoritus', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (88, 87, '@VUOSI@-12-15', 'Pikkujoulun koristeet ja tarvikkeet', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(193, 88, 44, 'D', 642000, 'Pikkujoulun koristeet ja tarvikkeet', 0, 0, 0),
(194, 88, 11, 'K', 642000, 'Pikkujoulun koristeet ja tarvikkeet', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (89, 88, '@VUOSI@-12-18', 'Muistaminen, kunniajäsenen 80-vuotispäivä', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(195, 89, 49, 'D', 650000, 'Muistaminen, kunniajäsenen 80-vuotispäivä', 0, 0, 0),
(196, 89, 11, 'K', 650000, 'Muistaminen, kunniajäsenen 80-vuotispäivä', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (90, 89, '@VUOSI@-12-31', 'Pankin palvelumaksut, joulukuu', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(197, 90, 68, 'D', 59000, 'Pankin palvelumaksut, joulukuu', 0, 0, 0),
(198, 90, 12, 'K', 59000, 'Pankin palvelumaksut, joulukuu', 0, 0, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (91, 90, '@VUOSI@-12-31', 'Säästötilin korko, loppuvuosi', 0, 0, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(199, 91, 13, 'D', 101200, 'Säästötilin korko, loppuvuosi', 0, 0, 0),
(200, 91, 65, 'K', 101200, 'Säästötilin korko, loppuvuosi', 0, 0, 0);

-- Tilinpäätösviennit.
INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (92, 91, '@VUOSI@-12-31', 'Toiminnantarkastajan palkkio, jaksotus', 0, 1, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(201, 92, 47, 'D', 1500000, 'Toiminnantarkastajan palkkio, jaksotus', 0, 1, 0),
(202, 92, 28, 'K', 1500000, 'Toiminnantarkastajan palkkio, jaksotus', 0, 1, 0);

INSERT INTO "to" (toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) VALUES (93, 92, '@VUOSI@-12-31', 'Suunnitelman mukainen poisto, koneet ja kalusto 25 %', 0, 1, 0);
INSERT INTO vi (viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti) VALUES
(203, 93, 71, 'D', 3600000, 'Suunnitelman mukainen poisto, koneet ja kalusto 25 %', 0, 1, 0),
(204, 93, 2, 'K', 3600000, 'Suunnitelman mukainen poisto, koneet ja kalusto 25 %', 0, 1, 0);
