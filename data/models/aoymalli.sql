-- Asunto OY:n malli: the chart of accounts, income statement and balance sheet templates of a
-- housing company (asunto-osakeyhtiö).
--
-- The income statement follows the customary property formula: Kiinteistön tuotot, less
-- Kiinteistön hoitokulut, gives Hoitokate; then depreciation, financing and the year's
-- surplus. The 3000s hold charges and rents, the 4000s-8000s the maintenance cost groups and
-- depreciation, the 9000s financing. Financing charges (rahoitusvastikkeet) pay the company's
-- loans, so they are income of financing, not of the property's upkeep. The balance sheet is
-- the small undertaking's, with a housing company's equity (share capital, building fund).
-- Every account is on exactly one template row. The keys (tlID, maID, mrID) are given here
-- because mrTilit and mrKaava refer to them.
--
-- The year's result: account 9990 (tlID 94) on the income statement's profit row, account
-- 2290 (tlID 24) on the balance sheet's "Tilikauden ylijäämä (alijäämä)" row (the setting
-- VoittoTaseella). The automatic profit entries post the result to both.

-- Chart of accounts ----------------------------------------------------------------------

INSERT INTO tl (tlID, tlNumero, tlNimi, tlKuvaus, tlAlkusaldo, tlLoppusaldo, tlPrint) VALUES
-- Fixed assets
(1, 1100, 'Aineettomat oikeudet', 'Esim. ohjelmistot ja käyttöoikeudet', 0, 0, 1),
(2, 1150, 'Muut pitkävaikutteiset menot', 'Aktivoidut perusparannukset, esim. putki- ja julkisivuremontit', 0, 0, 1),
(3, 1200, 'Maa-alueet', 'Yhtiön omistama tontti', 0, 0, 1),
(4, 1210, 'Rakennukset ja rakennelmat', ' ', 0, 0, 1),
(5, 1220, 'Koneet ja kalusto', 'Esim. pesutuvan koneet ja pihakalusteet', 0, 0, 1),
(6, 1250, 'Keskeneräiset hankinnat', 'Kesken olevat perusparannukset ja niiden ennakkomaksut', 0, 0, 1),
(7, 1400, 'Osakkeet ja osuudet', 'Esim. pysäköintiyhtiön osakkeet', 0, 0, 1),
(8, 1410, 'Liittymismaksut', 'Palautettavat kaukolämpö-, vesi- ja sähköliittymät', 0, 0, 1),
-- Current assets
(9, 1600, 'Rahoitusarvopaperit', 'Lyhytaikaiset sijoitukset', 0, 0, 1),
(10, 1700, 'Hoitovastikesaamiset', 'Erääntyneet, maksamattomat hoitovastikkeet', 0, 0, 1),
(11, 1710, 'Rahoitusvastikesaamiset', 'Erääntyneet, maksamattomat rahoitusvastikkeet', 0, 0, 1),
(12, 1720, 'Vuokrasaamiset', ' ', 0, 0, 1),
(13, 1730, 'Käyttökorvaussaamiset', 'Esim. vesi-, sauna- ja autopaikkamaksut', 0, 0, 1),
(14, 1800, 'Muut saamiset', ' ', 0, 0, 1),
(15, 1850, 'Siirtosaamiset', 'Tilikaudelle kuuluvat, myöhemmin saatavat tuotot', 0, 0, 1),
(16, 1910, 'Pankkitili, hoitotili', 'Yhtiön käyttötili hoitovastikkeille ja hoitokuluille', 0, 0, 1),
(17, 1911, 'Pankkitili, rahoitusvastiketili', 'Rahoitusvastikkeet ja lainojen hoito', 0, 0, 1),
(18, 1915, 'Säästötili', ' ', 0, 0, 1),
-- Equity
(19, 2000, 'Osakepääoma', ' ', 0, 0, 1),
(20, 2050, 'Rakennusrahasto', 'Rahastoidut rahoitusvastikkeet ja lainaosuussuoritukset', 0, 0, 1),
(21, 2100, 'Vararahasto', ' ', 0, 0, 1),
(22, 2150, 'Muut omat rahastot', 'Esim. yhtiökokouksen päättämä korjausrahasto', 0, 0, 1),
(23, 2250, 'Edellisten tilikausien ylijäämä', 'Edellisten tilikausien yli- ja alijäämät yhteensä', 0, 0, 1),
(24, 2290, 'Tilikauden yli-/alijäämä (tase)', 'Tilikauden tulos taseessa; ei kirjauksia tilikauden aikana', 0, 0, 1),
-- Liabilities
(25, 2600, 'Lainat rahoituslaitoksilta', 'Yhtiölainat, pitkäaikainen osuus', 0, 0, 1),
(26, 2700, 'Muut pitkäaikaiset velat', ' ', 0, 0, 1),
(27, 2800, 'Lainojen lyhytaikainen osuus', 'Seuraavalla tilikaudella maksettavat lyhennykset', 0, 0, 1),
(28, 2850, 'Saadut ennakot', 'Ennakkoon maksetut vastikkeet ja vuokrat', 0, 0, 1),
(29, 2870, 'Ostovelat', 'Saadut, maksamattomat laskut', 0, 0, 1),
(30, 2880, 'Muut lyhytaikaiset velat', ' ', 0, 0, 1),
(31, 2900, 'Siirtovelat', 'Tilikaudelle kuuluvat, myöhemmin maksettavat kulut', 0, 0, 1),
(32, 2930, 'Ennakonpidätysvelka', 'Palkoista ja palkkioista pidätetty vero', 0, 0, 1),
(33, 2940, 'Sosiaaliturvamaksuvelka', ' ', 0, 0, 1),
(34, 2950, 'Eläkevakuutusmaksuvelka', ' ', 0, 0, 1),
-- Property income: charges
(35, 3000, 'Hoitovastikkeet', ' ', 0, 0, 1),
(36, 3010, 'Korjausvastikkeet', 'Tiettyä korjausta varten perittävät vastikkeet', 0, 0, 1),
(37, 3020, 'Erityisvastikkeet', 'Vain osaa osakkaista koskevat vastikkeet', 0, 0, 1),
-- Property income: rents
(38, 3100, 'Huoneistojen vuokrat', 'Yhtiön omistamien huoneistojen vuokrat', 0, 0, 1),
(39, 3110, 'Liiketilojen vuokrat', ' ', 0, 0, 1),
(40, 3120, 'Muut vuokratuotot', 'Esim. varastojen ja kerhohuoneen vuokrat', 0, 0, 1),
-- Property income: usage fees
(41, 3200, 'Vesimaksut', ' ', 0, 0, 1),
(42, 3210, 'Saunamaksut', ' ', 0, 0, 1),
(43, 3220, 'Autopaikkamaksut', ' ', 0, 0, 1),
(44, 3230, 'Pesutupamaksut', ' ', 0, 0, 1),
(45, 3290, 'Muut käyttökorvaukset', 'Esim. sähköauton latauksen maksut', 0, 0, 1),
-- Property income: other
(46, 3900, 'Muut kiinteistön tuotot', 'Esim. avain- ja muuttomaksut', 0, 0, 1),
(47, 3910, 'Vakuutuskorvaukset', 'Vahinkojen korjauksiin saadut korvaukset', 0, 0, 1),
-- Maintenance: staff
(48, 4000, 'Palkat ja palkkiot', 'Esim. talonmiehen palkka ja hallituksen palkkiot', 0, 0, 1),
(49, 4100, 'Eläkekulut', ' ', 0, 0, 1),
(50, 4150, 'Muut henkilösivukulut', 'Esim. sosiaaliturva- ja vakuutusmaksut', 0, 0, 1),
-- Maintenance: administration
(51, 4200, 'Isännöinti', 'Isännöintipalkkio', 0, 0, 1),
(52, 4210, 'Tilintarkastus', 'Tilintarkastajan tai toiminnantarkastajan palkkio', 0, 0, 1),
(53, 4220, 'Kokouskulut', 'Yhtiökokouksen ja hallituksen kokousten kulut', 0, 0, 1),
(54, 4230, 'Pankkipalvelut', 'Pankin palvelumaksut', 0, 0, 1),
(55, 4240, 'Toimisto- ja postikulut', ' ', 0, 0, 1),
(56, 4290, 'Muut hallintokulut', 'Esim. lakipalvelut ja järjestöjen jäsenmaksut', 0, 0, 1),
-- Maintenance: upkeep and service
(57, 4300, 'Kiinteistönhoito', 'Huoltoyhtiön sopimuksen mukainen kiinteistönhoito', 0, 0, 1),
(58, 4310, 'Tekniset tarkastukset', 'Esim. kuntoarviot ja määräaikaistarkastukset', 0, 0, 1),
(59, 4320, 'Hissien huolto', ' ', 0, 0, 1),
(60, 4330, 'Huoltotarvikkeet', 'Esim. lamput, suodattimet ja pienet varaosat', 0, 0, 1),
(61, 4390, 'Muut käyttö- ja huoltokulut', ' ', 0, 0, 1),
-- Maintenance: outdoor areas
(62, 4400, 'Ulkoalueiden hoitopalvelut', ' ', 0, 0, 1),
(63, 4410, 'Lumenpoisto ja hiekoitus', 'Myös lumen poiskuljetus ja kattojen lumityöt', 0, 0, 1),
(64, 4420, 'Istutukset ja viheralueet', ' ', 0, 0, 1),
-- Maintenance: cleaning
(65, 4500, 'Siivouspalvelut', 'Porraskäytävien ja yhteisten tilojen siivous', 0, 0, 1),
(66, 4510, 'Siivoustarvikkeet', ' ', 0, 0, 1),
-- Maintenance: heating, water, electricity and gas
(67, 5000, 'Kaukolämpö', ' ', 0, 0, 1),
(68, 5090, 'Muut lämmityskulut', 'Esim. öljy- tai maalämmön kulut', 0, 0, 1),
(69, 5100, 'Vesi- ja jätevesimaksut', ' ', 0, 0, 1),
(70, 5200, 'Kiinteistösähkö', 'Yhteisten tilojen, ulkovalaistuksen ja laitteiden sähkö', 0, 0, 1),
(71, 5210, 'Kaasu', ' ', 0, 0, 1),
-- Maintenance: waste, insurance, rents, property tax
(72, 6000, 'Jäteastioiden tyhjennys', 'Seka- ja kierrätysjätteen kuljetus', 0, 0, 1),
(73, 6090, 'Muut jätehuoltokulut', 'Esim. vaarallisten jätteiden ja irtojätteen keräys', 0, 0, 1),
(74, 6100, 'Kiinteistövakuutus', ' ', 0, 0, 1),
(75, 6190, 'Muut vakuutukset', 'Esim. hallituksen vastuuvakuutus', 0, 0, 1),
(76, 6200, 'Maanvuokra', 'Vuokratontin vuokra', 0, 0, 1),
(77, 6290, 'Muut vuokrakulut', ' ', 0, 0, 1),
(78, 6300, 'Kiinteistövero', ' ', 0, 0, 1),
-- Maintenance: repairs and other costs
(79, 7000, 'Rakennusten korjaukset', 'Kulukirjatut korjaukset, esim. katot ja julkisivut', 0, 0, 1),
(80, 7010, 'LVI-korjaukset', 'Lämpö-, vesi- ja ilmanvaihtolaitteiden korjaukset', 0, 0, 1),
(81, 7020, 'Sähkö- ja hissikorjaukset', ' ', 0, 0, 1),
(82, 7030, 'Ulkoalueiden korjaukset', ' ', 0, 0, 1),
(83, 7090, 'Muut korjaukset', ' ', 0, 0, 1),
(84, 7900, 'Muut hoitokulut', ' ', 0, 0, 1),
-- Depreciation
(85, 8000, 'Rakennusten poistot', ' ', 0, 0, 1),
(86, 8010, 'Koneiden ja kaluston poistot', ' ', 0, 0, 1),
(87, 8020, 'Pitkävaikutteisten menojen poistot', ' ', 0, 0, 1),
(88, 8100, 'Arvonalentumiset', ' ', 0, 0, 1),
-- Financing
(89, 9000, 'Rahoitusvastikkeet', 'Lainojen korkoihin ja lyhennyksiin perittävät vastikkeet', 0, 0, 1),
(90, 9100, 'Korkotuotot', ' ', 0, 0, 1),
(91, 9110, 'Osinkotuotot', ' ', 0, 0, 1),
(92, 9200, 'Korkokulut', 'Yhtiölainojen korot', 0, 0, 1),
(93, 9290, 'Muut rahoituskulut', 'Esim. lainojen järjestelypalkkiot', 0, 0, 1),
-- The account of the income statement's profit row
(94, 9990, 'Tilikauden yli-/alijäämä (tuloslaskelma)', 'Tilikauden tulos tuloslaskelmassa; ei kirjauksia tilikauden aikana', 0, 0, 1);

-- Templates ------------------------------------------------------------------------------

INSERT INTO ma (maID, maNimi, maTyyppi, maSuojattu, maTulosMaID) VALUES
(1, 'Asunto-osakeyhtiön tuloslaskelma', 1, 0, 0),
(2, 'Asunto-osakeyhtiön tase', 2, 0, 1);

-- Income statement: every row on side K, so costs come out negative and Hoitokate adds the two
-- groups. The turnover row is Kiinteistön tuotot as a whole: a housing company's percentages
-- are customarily taken of all its property income, not of the charges alone. Income and cost
-- rents have captions of their own because formulas find rows by caption.
INSERT INTO mr (mrID, mrmaID, mrTeksti, mrTilit, mrKaava, mrSaldoPuoli, mrIsEquation, mrIsLiikevaihto, mrIsVoitto, mrBelongsToGroup, mrGroupOrder) VALUES
(1, 1, 'Kiinteistön tuotot', '', '', 'K', 0, 1, 0, 0, 1),
(2, 1, 'Vastikkeet', '35,36,37,', '', 'K', 0, 0, 0, 1, 1),
(3, 1, 'Vuokratuotot', '38,39,40,', '', 'K', 0, 0, 0, 1, 2),
(4, 1, 'Käyttökorvaukset', '41,42,43,44,45,', '', 'K', 0, 0, 0, 1, 3),
(5, 1, 'Muut kiinteistön tuotot', '46,47,', '', 'K', 0, 0, 0, 1, 4),
(6, 1, 'Kiinteistön hoitokulut', '', '', 'K', 0, 0, 0, 0, 2),
(7, 1, 'Henkilöstökulut', '48,49,50,', '', 'K', 0, 0, 0, 6, 1),
(8, 1, 'Hallinto', '51,52,53,54,55,56,', '', 'K', 0, 0, 0, 6, 2),
(9, 1, 'Käyttö ja huolto', '57,58,59,60,61,', '', 'K', 0, 0, 0, 6, 3),
(10, 1, 'Ulkoalueiden hoito', '62,63,64,', '', 'K', 0, 0, 0, 6, 4),
(11, 1, 'Siivous', '65,66,', '', 'K', 0, 0, 0, 6, 5),
(12, 1, 'Lämmitys', '67,68,', '', 'K', 0, 0, 0, 6, 6),
(13, 1, 'Vesi ja jätevesi', '69,', '', 'K', 0, 0, 0, 6, 7),
(14, 1, 'Sähkö ja kaasu', '70,71,', '', 'K', 0, 0, 0, 6, 8),
(15, 1, 'Jätehuolto', '72,73,', '', 'K', 0, 0, 0, 6, 9),
(16, 1, 'Vahinkovakuutukset', '74,75,', '', 'K', 0, 0, 0, 6, 10),
(17, 1, 'Vuokrakulut', '76,77,', '', 'K', 0, 0, 0, 6, 11),
(18, 1, 'Kiinteistövero', '78,', '', 'K', 0, 0, 0, 6, 12),
(19, 1, 'Korjaukset', '79,80,81,82,83,', '', 'K', 0, 0, 0, 6, 13),
(20, 1, 'Muut hoitokulut', '84,', '', 'K', 0, 0, 0, 6, 14),
(21, 1, 'Hoitokate', '', '+1,+6,', 'K', 1, 0, 0, 0, 3),
(22, 1, 'Poistot ja arvonalentumiset', '85,86,87,88,', '', 'K', 0, 0, 0, 0, 4),
(23, 1, 'Rahoitustuotot ja -kulut', '', '', 'K', 0, 0, 0, 0, 5),
(24, 1, 'Rahoitustuotot', '89,90,91,', '', 'K', 0, 0, 0, 23, 1),
(25, 1, 'Rahoituskulut', '92,93,', '', 'K', 0, 0, 0, 23, 2),
(26, 1, 'Tilikauden ylijäämä (alijäämä)', '94,', '', 'K', 0, 0, 1, 0, 6);

-- Balance sheet: rows under Vastaavaa on side D, under Vastattavaa on side K. A housing company
-- has no stock, so the balance sheet has no Vaihto-omaisuus row.
INSERT INTO mr (mrID, mrmaID, mrTeksti, mrTilit, mrKaava, mrSaldoPuoli, mrIsEquation, mrIsLiikevaihto, mrIsVoitto, mrBelongsToGroup, mrGroupOrder) VALUES
(27, 2, 'Vastaavaa', '', '', 'D', 0, 0, 0, 0, 1),
(28, 2, 'Pysyvät vastaavat', '', '', 'D', 0, 0, 0, 27, 1),
(29, 2, 'Aineettomat hyödykkeet', '1,2,', '', 'D', 0, 0, 0, 28, 1),
(30, 2, 'Aineelliset hyödykkeet', '3,4,5,6,', '', 'D', 0, 0, 0, 28, 2),
(31, 2, 'Sijoitukset', '7,8,', '', 'D', 0, 0, 0, 28, 3),
(32, 2, 'Vaihtuvat vastaavat', '', '', 'D', 0, 0, 0, 27, 2),
(33, 2, 'Saamiset', '10,11,12,13,14,15,', '', 'D', 0, 0, 0, 32, 1),
(34, 2, 'Rahoitusarvopaperit', '9,', '', 'D', 0, 0, 0, 32, 2),
(35, 2, 'Rahat ja pankkisaamiset', '16,17,18,', '', 'D', 0, 0, 0, 32, 3),
(36, 2, 'Vastattavaa', '', '', 'K', 0, 0, 0, 0, 2),
(37, 2, 'Oma pääoma', '', '', 'K', 0, 0, 0, 36, 1),
(38, 2, 'Osakepääoma', '19,', '', 'K', 0, 0, 0, 37, 1),
(39, 2, 'Rakennusrahasto', '20,', '', 'K', 0, 0, 0, 37, 2),
(40, 2, 'Muut rahastot', '21,22,', '', 'K', 0, 0, 0, 37, 3),
(41, 2, 'Edellisten tilikausien ylijäämä (alijäämä)', '23,', '', 'K', 0, 0, 0, 37, 4),
(42, 2, 'Tilikauden ylijäämä (alijäämä)', '24,', '', 'K', 0, 0, 0, 37, 5),
(43, 2, 'Vieras pääoma', '', '', 'K', 0, 0, 0, 36, 2),
(44, 2, 'Pitkäaikainen vieras pääoma', '25,26,', '', 'K', 0, 0, 0, 43, 1),
(45, 2, 'Lyhytaikainen vieras pääoma', '27,28,29,30,31,32,33,34,', '', 'K', 0, 0, 0, 43, 2);

-- Settings -------------------------------------------------------------------------------

-- The name is a placeholder that the company replaces in the settings window.
INSERT INTO Settings (setSection, setKey, setString) VALUES
('VORKAM', 'VoittoTaseella', '24'),
('VORKAM', 'LaskettavaTili', '16'),
('VORKAM', 'Seurannimi', 'Asunto Oy'),
('VORKAM', 'TilikausiAlku', '1.1.@VUOSI@'),
('VORKAM', 'TilikausiLoppu', '31.12.@VUOSI@'),
('VORKAM', 'EdTilikausiAlku', '1.1.@EDVUOSI@'),
('VORKAM', 'EdTilikausiLoppu', '31.12.@EDVUOSI@');
