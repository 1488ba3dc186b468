-- Metalliliitto: the chart of accounts, income statement and balance sheet templates of a
-- trade-union branch (ammattiosasto).
--
-- The income statement follows the association formula (varsinainen toiminta, varainhankinta,
-- sijoitus- ja rahoitustoiminta, yleisavustukset), the balance sheet the small undertaking's.
-- The branch's main income is the union's remittance of its share of the membership fees,
-- which is fund-raising; its activities (training, advocacy and shop stewards, recreation,
-- communication, administration, remembrances) each have a row of their own under the other
-- costs of the main activity. Every account is on exactly one template row. The keys (tlID,
-- maID, mrID) are given here because mrTilit and mrKaava refer to them.
--
-- The year's result: account 9990 (tlID 79) on the income statement's profit row, account
-- 2290 (tlID 19) on the balance sheet's "Tilikauden ylijäämä (alijäämä)" row (the setting
-- VoittoTaseella). The automatic profit entries post the result to both.

-- Chart of accounts ----------------------------------------------------------------------

INSERT INTO tl (tlID, tlNumero, tlNimi, tlKuvaus, tlAlkusaldo, tlLoppusaldo, tlPrint) VALUES
-- Fixed assets
(1, 1200, 'Koneet ja kalusto', 'Osaston omistamat laitteet ja kalusteet', 0, 0, 1),
(2, 1250, 'Muut aineelliset hyödykkeet', 'Esim. osaston lippu', 0, 0, 1),
(3, 1400, 'Osakkeet ja osuudet', 'Esim. loma-asuntojen osakkeet ja osuuspankin osuus', 0, 0, 1),
-- Current assets
(4, 1500, 'Myytävät tuotteet', 'Esim. osaston tuotteet ja merkit', 0, 0, 1),
(5, 1600, 'Rahoitusarvopaperit', 'Lyhytaikaiset sijoitukset', 0, 0, 1),
(6, 1700, 'Myyntisaamiset', ' ', 0, 0, 1),
(7, 1750, 'Jäsenmaksupalautussaamiset', 'Liitolta saamatta olevat jäsenmaksupalautukset', 0, 0, 1),
(8, 1800, 'Muut saamiset', ' ', 0, 0, 1),
(9, 1850, 'Siirtosaamiset', 'Tilikaudelle kuuluvat, myöhemmin saatavat tuotot', 0, 0, 1),
(10, 1900, 'Kassa', 'Käteisvarat', 0, 0, 1),
(11, 1910, 'Pankkitili', 'Osaston käyttötili', 0, 0, 1),
(12, 1915, 'Säästötili', ' ', 0, 0, 1),
-- Equity
(13, 2050, 'Sidottu rahasto', 'Sääntöjen tai lahjoittajan määräämä rahasto', 0, 0, 1),
(14, 2100, 'Toimintarahasto', ' ', 0, 0, 1),
(15, 2110, 'Koulutusrahasto', 'Jäsenten koulutukseen varatut varat', 0, 0, 1),
(16, 2120, 'Virkistysrahasto', 'Retkiin ja virkistykseen varatut varat', 0, 0, 1),
(17, 2150, 'Muut vapaat rahastot', ' ', 0, 0, 1),
(18, 2250, 'Edellisten tilikausien ylijäämä', 'Edellisten tilikausien yli- ja alijäämät yhteensä', 0, 0, 1),
(19, 2290, 'Tilikauden yli-/alijäämä (tase)', 'Tilikauden tulos taseessa; ei kirjauksia tilikauden aikana', 0, 0, 1),
-- Accumulated closing transfers
(20, 2400, 'Poistoero', ' ', 0, 0, 1),
-- Liabilities
(21, 2700, 'Muut pitkäaikaiset velat', ' ', 0, 0, 1),
(22, 2850, 'Saadut ennakot', 'Esim. retkien ennakkomaksut', 0, 0, 1),
(23, 2870, 'Ostovelat', 'Saadut, maksamattomat laskut', 0, 0, 1),
(24, 2880, 'Muut lyhytaikaiset velat', ' ', 0, 0, 1),
(25, 2900, 'Siirtovelat', 'Tilikaudelle kuuluvat, myöhemmin maksettavat kulut', 0, 0, 1),
(26, 2930, 'Ennakonpidätysvelka', 'Palkkioista ja korvauksista pidätetty vero', 0, 0, 1),
(27, 2940, 'Sosiaaliturvamaksuvelka', ' ', 0, 0, 1),
(28, 2950, 'Eläkevakuutusmaksuvelka', ' ', 0, 0, 1),
-- Income of the main activity
(29, 3000, 'Koulutuksen osallistumismaksut', ' ', 0, 0, 1),
(30, 3010, 'Koulutusavustukset liitolta', 'Liiton tuki osaston järjestämään koulutukseen', 0, 0, 1),
(31, 3100, 'Retkien osallistumismaksut', ' ', 0, 0, 1),
(32, 3110, 'Liikuntatoiminnan tuotot', 'Esim. liikuntavuorojen omavastuut', 0, 0, 1),
(33, 3200, 'Kohdeavustukset', 'Tiettyyn toimintaan tai hankkeeseen saadut avustukset', 0, 0, 1),
(34, 3900, 'Muut toiminnan tuotot', ' ', 0, 0, 1),
-- Costs of the main activity: staff
(35, 4000, 'Palkkiot', 'Esim. sihteerin ja rahastonhoitajan palkkiot', 0, 0, 1),
(36, 4010, 'Ansionmenetyskorvaukset', 'Kokous- ja koulutuspäiviltä maksetut korvaukset', 0, 0, 1),
(37, 4100, 'Eläkekulut', ' ', 0, 0, 1),
(38, 4150, 'Muut henkilösivukulut', 'Esim. sosiaaliturva- ja vakuutusmaksut', 0, 0, 1),
-- Costs of the main activity: training
(39, 4200, 'Kurssimaksut', 'Jäsenten kurssien osallistumismaksut', 0, 0, 1),
(40, 4210, 'Kurssiavustukset jäsenille', 'Jäsenille maksetut koulutustuet ja stipendit', 0, 0, 1),
(41, 4220, 'Koulutuksen matkakulut', ' ', 0, 0, 1),
(42, 4290, 'Koulutuksen muut kulut', 'Esim. osaston omien koulutusten tilat ja tarjoilut', 0, 0, 1),
-- Costs of the main activity: advocacy and shop stewards
(43, 4300, 'Luottamusmiestoiminta', 'Luottamusmiesten ja työsuojeluvaltuutettujen tuki', 0, 0, 1),
(44, 4310, 'Edunvalvonnan kokoukset', 'Esim. työpaikkakokoukset ja neuvottelupäivät', 0, 0, 1),
(45, 4320, 'Edunvalvonnan matkakulut', ' ', 0, 0, 1),
-- Costs of the main activity: recreation
(46, 4400, 'Retket ja matkat', ' ', 0, 0, 1),
(47, 4410, 'Liikuntatoiminta', 'Esim. kuntosali- ja uimahallivuorot', 0, 0, 1),
(48, 4420, 'Virkistystilaisuudet', 'Esim. pikkujoulu ja kesäjuhla', 0, 0, 1),
-- Costs of the main activity: communication
(49, 4500, 'Jäsentiedotteet ja ilmoitukset', ' ', 0, 0, 1),
(50, 4510, 'Verkkosivut ja viestintä', ' ', 0, 0, 1),
(51, 4520, 'Jäsenhankinta', 'Esim. työpaikkakäynnit ja esitteet', 0, 0, 1),
-- Costs of the main activity: administration
(52, 4600, 'Osaston kokoukset', 'Hallituksen ja osaston kokousten kulut', 0, 0, 1),
(53, 4610, 'Vuosikokous', 'Vuosikokouksen tilat ja tarjoilut', 0, 0, 1),
(54, 4620, 'Toiminnantarkastus', ' ', 0, 0, 1),
(55, 4630, 'Toimisto- ja postikulut', ' ', 0, 0, 1),
(56, 4640, 'Hallinnon matkakulut', ' ', 0, 0, 1),
(57, 4650, 'Vakuutukset', ' ', 0, 0, 1),
(58, 4660, 'Jäsenmaksut muille yhteisöille', 'Esim. paikallisen yhteistyöjärjestön jäsenmaksu', 0, 0, 1),
-- Costs of the main activity: remembrances and other
(59, 4700, 'Merkkipäivämuistamiset', 'Jäsenten merkkipäivien lahjat', 0, 0, 1),
(60, 4710, 'Adressit ja kukat', ' ', 0, 0, 1),
(61, 4720, 'Ansiomerkit', 'Liiton ja osaston ansiomerkit', 0, 0, 1),
(62, 4900, 'Muut toimintakulut', ' ', 0, 0, 1),
-- Fund-raising
(63, 5000, 'Jäsenmaksupalautukset', 'Liiton tilittämä osaston osuus jäsenmaksuista', 0, 0, 1),
(64, 5010, 'Eläkeläisjäsenten jäsenmaksut', 'Suoraan osastolle maksetut jäsenmaksut', 0, 0, 1),
(65, 5100, 'Lahjoitukset', 'Saadut lahjoitukset', 0, 0, 1),
(66, 5200, 'Myyntituotot', 'Esim. arpajaiset ja tuotemyynti', 0, 0, 1),
(67, 5500, 'Myytyjen tuotteiden ostot', ' ', 0, 0, 1),
(68, 5600, 'Varainhankinnan muut kulut', ' ', 0, 0, 1),
-- Investment and financing
(69, 6000, 'Korkotuotot', ' ', 0, 0, 1),
(70, 6100, 'Osinkotuotot', ' ', 0, 0, 1),
(71, 6200, 'Loma-asuntojen vuokratuotot', 'Osaston loma-asuntojen vuokraus jäsenille', 0, 0, 1),
(72, 6500, 'Korkokulut', ' ', 0, 0, 1),
(73, 6600, 'Pankkikulut', 'Pankin palvelumaksut', 0, 0, 1),
(74, 6700, 'Loma-asuntojen kulut', 'Esim. vastikkeet ja siivous', 0, 0, 1),
-- General grants
(75, 7000, 'Liiton toiminta-avustus', 'Liiton yleisavustus osaston toimintaan', 0, 0, 1),
(76, 7100, 'Muut yleisavustukset', ' ', 0, 0, 1),
-- Depreciation
(77, 8000, 'Suunnitelman mukaiset poistot', ' ', 0, 0, 1),
-- Closing transfers
(78, 9000, 'Poistoeron muutos', ' ', 0, 0, 1),
-- The account of the income statement's profit row
(79, 9990, 'Tilikauden yli-/alijäämä (tuloslaskelma)', 'Tilikauden tulos tuloslaskelmassa; ei kirjauksia tilikauden aikana', 0, 0, 1);

-- Templates ------------------------------------------------------------------------------

INSERT INTO ma (maID, maNimi, maTyyppi, maSuojattu, maTulosMaID) VALUES
(1, 'Ammattiosaston tuloslaskelma', 1, 0, 0),
(2, 'Ammattiosaston tase', 2, 0, 1);

-- Income statement: every row on side K; a group's total is its tuotto-/kulujäämä. The turnover
-- row is Varainhankinnan tuotot: the membership fee remittance is most of a branch's income, so
-- percentages of it tell more than percentages of the small income of the main activity.
INSERT INTO mr (mrID, mrmaID, mrTeksti, mrTilit, mrKaava, mrSaldoPuoli, mrIsEquation, mrIsLiikevaihto, mrIsVoitto, mrBelongsToGroup, mrGroupOrder) VALUES
(1, 1, 'Varsinainen toiminta', '', '', 'K', 0, 0, 0, 0, 1),
(2, 1, 'Varsinaisen toiminnan tuotot', '29,30,31,32,33,34,', '', 'K', 0, 0, 0, 1, 1),
(3, 1, 'Varsinaisen toiminnan kulut', '', '', 'K', 0, 0, 0, 1, 2),
(4, 1, 'Henkilöstökulut', '35,36,37,38,', '', 'K', 0, 0, 0, 3, 1),
(5, 1, 'Poistot', '77,', '', 'K', 0, 0, 0, 3, 2),
(6, 1, 'Muut kulut', '', '', 'K', 0, 0, 0, 3, 3),
(7, 1, 'Koulutus', '39,40,41,42,', '', 'K', 0, 0, 0, 6, 1),
(8, 1, 'Edunvalvonta ja luottamusmiehet', '43,44,45,', '', 'K', 0, 0, 0, 6, 2),
(9, 1, 'Virkistys', '46,47,48,', '', 'K', 0, 0, 0, 6, 3),
(10, 1, 'Tiedotus', '49,50,51,', '', 'K', 0, 0, 0, 6, 4),
(11, 1, 'Hallinto', '52,53,54,55,56,57,58,', '', 'K', 0, 0, 0, 6, 5),
(12, 1, 'Muistamiset', '59,60,61,', '', 'K', 0, 0, 0, 6, 6),
(13, 1, 'Muut toimintakulut', '62,', '', 'K', 0, 0, 0, 6, 7),
(14, 1, 'Varainhankinta', '', '', 'K', 0, 0, 0, 0, 2),
(15, 1, 'Varainhankinnan tuotot', '63,64,65,66,', '', 'K', 0, 1, 0, 14, 1),
(16, 1, 'Varainhankinnan kulut', '67,68,', '', 'K', 0, 0, 0, 14, 2),
(17, 1, 'Sijoitus- ja rahoitustoiminta', '', '', 'K', 0, 0, 0, 0, 3),
(18, 1, 'Sijoitus- ja rahoitustoiminnan tuotot', '69,70,71,', '', 'K', 0, 0, 0, 17, 1),
(19, 1, 'Sijoitus- ja rahoitustoiminnan kulut', '72,73,74,', '', 'K', 0, 0, 0, 17, 2),
(20, 1, 'Yleisavustukset', '75,76,', '', 'K', 0, 0, 0, 0, 4),
(21, 1, 'Tilikauden tulos', '', '+1,+14,+17,+20,', 'K', 1, 0, 0, 0, 5),
(22, 1, 'Tilinpäätössiirrot', '78,', '', 'K', 0, 0, 0, 0, 6),
(23, 1, 'Tilikauden ylijäämä (alijäämä)', '79,', '', 'K', 0, 0, 1, 0, 7);

-- Balance sheet: rows under Vastaavaa on side D, under Vastattavaa on side K.
INSERT INTO mr (mrID, mrmaID, mrTeksti, mrTilit, mrKaava, mrSaldoPuoli, mrIsEquation, mrIsLiikevaihto, mrIsVoitto, mrBelongsToGroup, mrGroupOrder) VALUES
(24, 2, 'Vastaavaa', '', '', 'D', 0, 0, 0, 0, 1),
(25, 2, 'Pysyvät vastaavat', '', '', 'D', 0, 0, 0, 24, 1),
(26, 2, 'Aineelliset hyödykkeet', '1,2,', '', 'D', 0, 0, 0, 25, 1),
(27, 2, 'Sijoitukset', '3,', '', 'D', 0, 0, 0, 25, 2),
(28, 2, 'Vaihtuvat vastaavat', '', '', 'D', 0, 0, 0, 24, 2),
(29, 2, 'Vaihto-omaisuus', '4,', '', 'D', 0, 0, 0, 28, 1),
(30, 2, 'Saamiset', '6,7,8,9,', '', 'D', 0, 0, 0, 28, 2),
(31, 2, 'Rahoitusarvopaperit', '5,', '', 'D', 0, 0, 0, 28, 3),
(32, 2, 'Rahat ja pankkisaamiset', '10,11,12,', '', 'D', 0, 0, 0, 28, 4),
(33, 2, 'Vastattavaa', '', '', 'K', 0, 0, 0, 0, 2),
(34, 2, 'Oma pääoma', '', '', 'K', 0, 0, 0, 33, 1),
(35, 2, 'Sidotut rahastot', '13,', '', 'K', 0, 0, 0, 34, 1),
(36, 2, 'Vapaat rahastot', '14,15,16,17,', '', 'K', 0, 0, 0, 34, 2),
(37, 2, 'Edellisten tilikausien ylijäämä (alijäämä)', '18,', '', 'K', 0, 0, 0, 34, 3),
(38, 2, 'Tilikauden ylijäämä (alijäämä)', '19,', '', 'K', 0, 0, 0, 34, 4),
(39, 2, 'Tilinpäätössiirtojen kertymä', '20,', '', 'K', 0, 0, 0, 33, 2),
(40, 2, 'Vieras pääoma', '', '', 'K', 0, 0, 0, 33, 3),
(41, 2, 'Pitkäaikainen vieras pääoma', '21,', '', 'K', 0, 0, 0, 40, 1),
(42, 2, 'Lyhytaikainen vieras pääoma', '22,23,24,25,26,27,28,', '', 'K', 0, 0, 0, 40, 2);

-- Settings -------------------------------------------------------------------------------

-- The name is a placeholder that the branch replaces in the settings window.
INSERT INTO Settings (setSection, setKey, setString) VALUES
('VORKAM', 'VoittoTaseella', '19'),
('VORKAM', 'LaskettavaTili', '11'),
('VORKAM', 'Seurannimi', 'Ammattiosasto ry'),
('VORKAM', 'TilikausiAlku', '1.1.@VUOSI@'),
('VORKAM', 'TilikausiLoppu', '31.12.@VUOSI@'),
('VORKAM', 'EdTilikausiAlku', '1.1.@EDVUOSI@'),
('VORKAM', 'EdTilikausiLoppu', '31.12.@EDVUOSI@');
