-- Lions: the chart of accounts, income statement and balance sheet templates of a Lions club.
--
-- A club keeps administration and activity money apart. Administration is funded by members'
-- dues and meeting fines and pays the federation's, the district's and the international
-- association's dues and the meeting costs; its money is on the administration bank account.
-- Money raised from the public (collections, sales, lotteries, concerts) goes on the activity
-- bank account and entirely to charity as donations given; it never pays administration.
-- At the year end the activities' net (raised less given and less the costs of raising) is
-- moved to the Aktiviteettirahasto in equity with an entry on account 9500, so the year's
-- surplus is administration's alone and the fund shows raised money not yet given away.
-- "Tulotili" and "Kulutili" accounts are for the club's own activities; the club renames them.
-- Every account is on exactly one template row. The keys (tlID, maID, mrID) are given here
-- because mrTilit and mrKaava refer to them.
--
-- The year's result: account 9990 (tlID 64) on the income statement's profit row, account
-- 2290 (tlID 14) on the balance sheet's "Tilikauden ylijäämä (alijäämä)" row (the setting
-- VoittoTaseella). The automatic profit entries post the result to both.

-- Chart of accounts ----------------------------------------------------------------------

INSERT INTO tl (tlID, tlNumero, tlNimi, tlKuvaus, tlAlkusaldo, tlLoppusaldo, tlPrint) VALUES
-- Fixed assets
(1, 1200, 'Koneet ja kalusto', 'Esim. myyntikoju, teltta ja äänentoistolaitteet', 0, 0, 1),
(2, 1400, 'Osakkeet ja osuudet', 'Esim. osuuspankin osuus', 0, 0, 1),
-- Current assets
(3, 1500, 'Myytävät tuotteet', 'Aktiviteettien myyntituotteet varastossa', 0, 0, 1),
(4, 1700, 'Myyntisaamiset', ' ', 0, 0, 1),
(5, 1750, 'Jäsenmaksusaamiset', ' ', 0, 0, 1),
(6, 1800, 'Muut saamiset', ' ', 0, 0, 1),
(7, 1850, 'Siirtosaamiset', 'Tilikaudelle kuuluvat, myöhemmin saatavat tuotot', 0, 0, 1),
(8, 1900, 'Kassa', 'Käteisvarat; hallinnon ja aktiviteettien rahat tilitetään omille tileilleen', 0, 0, 1),
(9, 1910, 'Pankkitili, hallinto', 'Jäsenmaksut, sakot ja hallinnon kulut', 0, 0, 1),
(10, 1911, 'Pankkitili, aktiviteetti', 'Yleisöltä kerätyt varat ja annetut lahjoitukset', 0, 0, 1),
-- Equity
(11, 2050, 'Aktiviteettirahasto', 'Yleisöltä kerätyt, vielä lahjoittamattomat varat', 0, 0, 1),
(12, 2150, 'Muut vapaat rahastot', ' ', 0, 0, 1),
(13, 2250, 'Edellisten tilikausien ylijäämä', 'Hallinnon edellisten tilikausien yli- ja alijäämät', 0, 0, 1),
(14, 2290, 'Tilikauden yli-/alijäämä (tase)', 'Tilikauden tulos taseessa; ei kirjauksia tilikauden aikana', 0, 0, 1),
-- Liabilities
(15, 2850, 'Saadut ennakot', 'Esim. tapahtumien ennakkoon myydyt liput', 0, 0, 1),
(16, 2870, 'Ostovelat', 'Saadut, maksamattomat laskut', 0, 0, 1),
(17, 2880, 'Muut lyhytaikaiset velat', ' ', 0, 0, 1),
(18, 2890, 'Maksamattomat lahjoitukset', 'Päätetyt, vielä maksamattomat lahjoitukset', 0, 0, 1),
(19, 2900, 'Siirtovelat', 'Tilikaudelle kuuluvat, myöhemmin maksettavat kulut', 0, 0, 1),
(20, 2930, 'Ennakonpidätysvelka', 'Esim. esiintyjien palkkioista pidätetty vero', 0, 0, 1),
-- Income of the main activity
(21, 3000, 'Saadut kohdeavustukset', 'Tiettyyn aktiviteettiin saadut avustukset', 0, 0, 1),
(22, 3100, 'Talkootyön tuotot', 'Talkootyöstä saadut korvaukset aktiviteetteihin', 0, 0, 1),
(23, 3900, 'Muut toiminnan tuotot', ' ', 0, 0, 1),
-- Costs of the main activity: administration
(24, 4200, 'Liiton jäsenmaksut', 'Kansallisen Lions-liiton jäsenmaksut', 0, 0, 1),
(25, 4210, 'Piirin jäsenmaksut', ' ', 0, 0, 1),
(26, 4220, 'Kansainväliset jäsenmaksut', 'Kansainvälisen järjestön jäsenmaksut', 0, 0, 1),
(27, 4300, 'Kokouskulut', 'Klubikokousten tilat ja tarjoilut', 0, 0, 1),
(28, 4310, 'Klubin juhlat', 'Esim. vuosijuhla ja charter-juhla', 0, 0, 1),
(29, 4320, 'Piirin ja liiton kokoukset', 'Osallistumismaksut ja matkat', 0, 0, 1),
(30, 4400, 'Toimisto- ja postikulut', ' ', 0, 0, 1),
(31, 4410, 'Merkit ja viirit', 'Jäsenmerkit, viirit ja palkitsemiset', 0, 0, 1),
(32, 4420, 'Muistamiset', ' ', 0, 0, 1),
(33, 4490, 'Muut hallinnon kulut', ' ', 0, 0, 1),
-- Costs of the main activity: donations given
(34, 4500, 'Lahjoitukset nuorisotyöhön', ' ', 0, 0, 1),
(35, 4510, 'Lahjoitukset vanhus- ja veteraanityöhön', ' ', 0, 0, 1),
(36, 4520, 'Lahjoitukset terveyteen ja hyvinvointiin', ' ', 0, 0, 1),
(37, 4530, 'Lahjoitukset kansainväliseen apuun', ' ', 0, 0, 1),
(38, 4540, 'LCIF-lahjoitukset', 'Lahjoitukset kansainvälisen järjestön säätiölle', 0, 0, 1),
(39, 4590, 'Muut lahjoitukset ja avustukset', ' ', 0, 0, 1),
(40, 4600, 'Aktiviteettien toteutuskulut', 'Lahjoituskohteen hyväksi tehdyn työn materiaalit', 0, 0, 1),
-- Fund-raising for administration
(41, 5000, 'Jäsenmaksut', 'Klubin jäsenmaksut', 0, 0, 1),
(42, 5010, 'Kokoussakot', 'Kokouksissa kerätyt sakot', 0, 0, 1),
(43, 5020, 'Kokousten ateriamaksut', 'Jäsenten maksamat kokousateriat', 0, 0, 1),
-- Fund-raising for activities
(44, 5200, 'Keräystuotot', 'Yleisöltä kerätyt varat', 0, 0, 1),
(45, 5210, 'Myyntituotot', 'Aktiviteettien tuotemyynti', 0, 0, 1),
(46, 5220, 'Arpajaistuotot', ' ', 0, 0, 1),
(47, 5230, 'Konserttien ja tapahtumien tuotot', ' ', 0, 0, 1),
(48, 5240, 'Yritysten tuet aktiviteetteihin', 'Esim. mainostuotot ja sponsorointi', 0, 0, 1),
(49, 5300, 'Tulotili 1', 'Nimeä tili klubin oman aktiviteetin mukaan', 0, 0, 1),
(50, 5310, 'Tulotili 2', 'Nimeä tili klubin oman aktiviteetin mukaan', 0, 0, 1),
(51, 5320, 'Tulotili 3', 'Nimeä tili klubin oman aktiviteetin mukaan', 0, 0, 1),
(52, 5500, 'Myytyjen tuotteiden ostot', ' ', 0, 0, 1),
(53, 5510, 'Arpajaisvoitot', ' ', 0, 0, 1),
(54, 5520, 'Konserttien ja tapahtumien kulut', 'Esim. esiintyjien palkkiot ja tilavuokrat', 0, 0, 1),
(55, 5530, 'Keräysten kulut', 'Esim. keräysluvat ja keräysmateriaalit', 0, 0, 1),
(56, 5600, 'Kulutili 1', 'Nimeä tili klubin oman aktiviteetin mukaan', 0, 0, 1),
(57, 5610, 'Kulutili 2', 'Nimeä tili klubin oman aktiviteetin mukaan', 0, 0, 1),
(58, 5620, 'Kulutili 3', 'Nimeä tili klubin oman aktiviteetin mukaan', 0, 0, 1),
-- Investment and financing
(59, 6000, 'Korkotuotot', ' ', 0, 0, 1),
(60, 6600, 'Pankkikulut, hallinto', 'Hallintotilin palvelumaksut', 0, 0, 1),
(61, 6610, 'Pankkikulut, aktiviteetti', 'Aktiviteettitilin palvelumaksut', 0, 0, 1),
-- General grants
(62, 7000, 'Saadut yleisavustukset', 'Koko klubin toimintaan saadut avustukset', 0, 0, 1),
-- The activities' net moved to the fund
(63, 9500, 'Aktiviteettirahaston muutos', 'Aktiviteettien tuotto-/kulujäämän siirto rahastoon tai rahastosta', 0, 0, 1),
-- The account of the income statement's profit row
(64, 9990, 'Tilikauden yli-/alijäämä (tuloslaskelma)', 'Tilikauden tulos tuloslaskelmassa; ei kirjauksia tilikauden aikana', 0, 0, 1);

-- Templates ------------------------------------------------------------------------------

INSERT INTO ma (maID, maNimi, maTyyppi, maSuojattu, maTulosMaID) VALUES
(1, 'Lions-klubin tuloslaskelma', 1, 0, 0),
(2, 'Lions-klubin tase', 2, 0, 1);

-- Income statement: every row on side K; a group's total is its tuotto-/kulujäämä. Costs and
-- fund-raising are split into administration and activities. The turnover row is
-- Varainhankinnan tuotot: dues and money raised are nearly all of a club's income.
INSERT INTO mr (mrID, mrmaID, mrTeksti, mrTilit, mrKaava, mrSaldoPuoli, mrIsEquation, mrIsLiikevaihto, mrIsVoitto, mrBelongsToGroup, mrGroupOrder) VALUES
(1, 1, 'Varsinainen toiminta', '', '', 'K', 0, 0, 0, 0, 1),
(2, 1, 'Varsinaisen toiminnan tuotot', '21,22,23,', '', 'K', 0, 0, 0, 1, 1),
(3, 1, 'Varsinaisen toiminnan kulut', '', '', 'K', 0, 0, 0, 1, 2),
(4, 1, 'Hallinnon kulut', '24,25,26,27,28,29,30,31,32,33,', '', 'K', 0, 0, 0, 3, 1),
(5, 1, 'Lahjoitukset ja avustukset', '34,35,36,37,38,39,40,', '', 'K', 0, 0, 0, 3, 2),
(6, 1, 'Varainhankinta', '', '', 'K', 0, 0, 0, 0, 2),
(7, 1, 'Varainhankinnan tuotot', '', '', 'K', 0, 1, 0, 6, 1),
(8, 1, 'Jäsenmaksut ja sakot', '41,42,43,', '', 'K', 0, 0, 0, 7, 1),
(9, 1, 'Aktiviteettien tuotot', '44,45,46,47,48,49,50,51,', '', 'K', 0, 0, 0, 7, 2),
(10, 1, 'Varainhankinnan kulut', '52,53,54,55,56,57,58,', '', 'K', 0, 0, 0, 6, 2),
(11, 1, 'Sijoitus- ja rahoitustoiminta', '', '', 'K', 0, 0, 0, 0, 3),
(12, 1, 'Sijoitus- ja rahoitustoiminnan tuotot', '59,', '', 'K', 0, 0, 0, 11, 1),
(13, 1, 'Sijoitus- ja rahoitustoiminnan kulut', '60,61,', '', 'K', 0, 0, 0, 11, 2),
(14, 1, 'Yleisavustukset', '62,', '', 'K', 0, 0, 0, 0, 4),
(15, 1, 'Tilikauden tulos', '', '+1,+6,+11,+14,', 'K', 1, 0, 0, 0, 5),
(16, 1, 'Aktiviteettirahaston muutos', '63,', '', 'K', 0, 0, 0, 0, 6),
(17, 1, 'Tilikauden ylijäämä (alijäämä)', '64,', '', 'K', 0, 0, 1, 0, 7);

-- Balance sheet: rows under Vastaavaa on side D, under Vastattavaa on side K. The fund has a
-- row of its own so that the money still to be given away shows in the balance sheet.
INSERT INTO mr (mrID, mrmaID, mrTeksti, mrTilit, mrKaava, mrSaldoPuoli, mrIsEquation, mrIsLiikevaihto, mrIsVoitto, mrBelongsToGroup, mrGroupOrder) VALUES
(18, 2, 'Vastaavaa', '', '', 'D', 0, 0, 0, 0, 1),
(19, 2, 'Pysyvät vastaavat', '', '', 'D', 0, 0, 0, 18, 1),
(20, 2, 'Aineelliset hyödykkeet', '1,', '', 'D', 0, 0, 0, 19, 1),
(21, 2, 'Sijoitukset', '2,', '', 'D', 0, 0, 0, 19, 2),
(22, 2, 'Vaihtuvat vastaavat', '', '', 'D', 0, 0, 0, 18, 2),
(23, 2, 'Vaihto-omaisuus', '3,', '', 'D', 0, 0, 0, 22, 1),
(24, 2, 'Saamiset', '4,5,6,7,', '', 'D', 0, 0, 0, 22, 2),
(25, 2, 'Rahat ja pankkisaamiset', '8,9,10,', '', 'D', 0, 0, 0, 22, 3),
(26, 2, 'Vastattavaa', '', '', 'K', 0, 0, 0, 0, 2),
(27, 2, 'Oma pääoma', '', '', 'K', 0, 0, 0, 26, 1),
(28, 2, 'Aktiviteettirahasto', '11,', '', 'K', 0, 0, 0, 27, 1),
(29, 2, 'Vapaat rahastot', '12,', '', 'K', 0, 0, 0, 27, 2),
(30, 2, 'Edellisten tilikausien ylijäämä (alijäämä)', '13,', '', 'K', 0, 0, 0, 27, 3),
(31, 2, 'Tilikauden ylijäämä (alijäämä)', '14,', '', 'K', 0, 0, 0, 27, 4),
(32, 2, 'Vieras pääoma', '', '', 'K', 0, 0, 0, 26, 2),
(33, 2, 'Lyhytaikainen vieras pääoma', '15,16,17,18,19,20,', '', 'K', 0, 0, 0, 32, 1);

-- Settings -------------------------------------------------------------------------------

-- The voucher window shows the balance of the administration account. The name is a
-- placeholder that the club completes in the settings window.
INSERT INTO Settings (setSection, setKey, setString) VALUES
('VORKAM', 'VoittoTaseella', '14'),
('VORKAM', 'LaskettavaTili', '9'),
('VORKAM', 'Seurannimi', 'Lions Club'),
('VORKAM', 'TilikausiAlku', '1.1.@VUOSI@'),
('VORKAM', 'TilikausiLoppu', '31.12.@VUOSI@'),
('VORKAM', 'EdTilikausiAlku', '1.1.@EDVUOSI@'),
('VORKAM', 'EdTilikausiLoppu', '31.12.@EDVUOSI@');
