-- Yhdistyksen malli: yleinen yhdistyksen tilikartta, tuloslaskelma- ja tasemalli.
--
-- Tuloslaskelma seuraa aatteellisen yhteisön kaavaa (varsinainen toiminta, varainhankinta,
-- sijoitus- ja rahoitustoiminta, yleisavustukset), tase pien- ja mikroyrityksen kaavaa.
-- Jokainen tili on täsmälleen yhdellä mallirivillä. Tunnisteet (tlID, maID, mrID) on
-- annettu itse, koska mrTilit ja mrKaava viittaavat niihin.
--
-- Tilikauden tulos: tuloslaskelman voittorivillä on tili 9990 (tlID 74), taseen
-- "Tilikauden ylijäämä (alijäämä)" -rivillä tili 2290 (tlID 19, asetus VoittoTaseella).
-- Automaattikirjaukset vievät tuloksen kummallekin tilille.

-- Tilikartta -------------------------------------------------------------------------

INSERT INTO tl (tlID, tlNumero, tlNimi, tlKuvaus, tlAlkusaldo, tlLoppusaldo, tlPrint) VALUES
-- Pysyvät vastaavat
(1, 1100, 'Aineettomat oikeudet', 'Esim. ohjelmistolisenssit ja tavaramerkit', 0, 0, 1),
(2, 1200, 'Koneet ja kalusto', 'Yhdistyksen omistamat laitteet ja kalusteet', 0, 0, 1),
(3, 1250, 'Muut aineelliset hyödykkeet', ' ', 0, 0, 1),
(4, 1400, 'Osakkeet ja osuudet', 'Pitkäaikaiset sijoitukset', 0, 0, 1),
-- Vaihtuvat vastaavat
(5, 1500, 'Myytävät tuotteet ja tarvikkeet', 'Vaihto-omaisuus', 0, 0, 1),
(6, 1600, 'Rahoitusarvopaperit', 'Lyhytaikaiset sijoitukset', 0, 0, 1),
(7, 1700, 'Myyntisaamiset', 'Laskutetut, maksamattomat myynnit', 0, 0, 1),
(8, 1750, 'Jäsenmaksusaamiset', ' ', 0, 0, 1),
(9, 1800, 'Muut saamiset', ' ', 0, 0, 1),
(10, 1850, 'Siirtosaamiset', 'Tilikaudelle kuuluvat, myöhemmin saatavat tuotot', 0, 0, 1),
(11, 1900, 'Kassa', 'Käteisvarat', 0, 0, 1),
(12, 1910, 'Pankkitili', 'Yhdistyksen käyttötili', 0, 0, 1),
(13, 1915, 'Säästötili', ' ', 0, 0, 1),
-- Oma pääoma
(14, 2000, 'Oma pääoma', ' ', 0, 0, 1),
(15, 2050, 'Sidottu rahasto', 'Sääntöjen tai lahjoittajan määräämä rahasto', 0, 0, 1),
(16, 2100, 'Toimintarahasto', ' ', 0, 0, 1),
(17, 2150, 'Muut vapaat rahastot', ' ', 0, 0, 1),
(18, 2250, 'Edellisten tilikausien ylijäämä', 'Edellisten tilikausien yli- ja alijäämät yhteensä', 0, 0, 1),
(19, 2290, 'Tilikauden yli-/alijäämä (tase)', 'Tilikauden tulos taseessa; ei kirjauksia tilikauden aikana', 0, 0, 1),
-- Tilinpäätössiirrot ja varaukset
(20, 2400, 'Poistoero', ' ', 0, 0, 1),
(21, 2500, 'Pakolliset varaukset', ' ', 0, 0, 1),
-- Vieras pääoma
(22, 2600, 'Lainat rahoituslaitoksilta', 'Pitkäaikaiset lainat', 0, 0, 1),
(23, 2700, 'Muut pitkäaikaiset velat', ' ', 0, 0, 1),
(24, 2800, 'Lyhytaikaiset lainat', ' ', 0, 0, 1),
(25, 2850, 'Saadut ennakot', 'Esim. seuraavan vuoden tapahtumien ennakkomaksut', 0, 0, 1),
(26, 2870, 'Ostovelat', 'Saadut, maksamattomat laskut', 0, 0, 1),
(27, 2880, 'Muut lyhytaikaiset velat', ' ', 0, 0, 1),
(28, 2900, 'Siirtovelat', 'Tilikaudelle kuuluvat, myöhemmin maksettavat kulut', 0, 0, 1),
(29, 2930, 'Ennakonpidätysvelka', 'Palkoista ja palkkioista pidätetty vero', 0, 0, 1),
(30, 2940, 'Sosiaaliturvamaksuvelka', ' ', 0, 0, 1),
(31, 2950, 'Eläkevakuutusmaksuvelka', ' ', 0, 0, 1),
-- Varsinaisen toiminnan tuotot
(32, 3000, 'Tulotili 1', 'Nimeä tili yhdistyksen oman toiminnan mukaan', 0, 0, 1),
(33, 3010, 'Tulotili 2', 'Nimeä tili yhdistyksen oman toiminnan mukaan', 0, 0, 1),
(34, 3020, 'Tulotili 3', 'Nimeä tili yhdistyksen oman toiminnan mukaan', 0, 0, 1),
(35, 3030, 'Tulotili 4', 'Nimeä tili yhdistyksen oman toiminnan mukaan', 0, 0, 1),
(36, 3040, 'Tulotili 5', 'Nimeä tili yhdistyksen oman toiminnan mukaan', 0, 0, 1),
(37, 3100, 'Kohdeavustukset', 'Tiettyyn toimintaan tai hankkeeseen saadut avustukset', 0, 0, 1),
(38, 3900, 'Muut toiminnan tuotot', ' ', 0, 0, 1),
-- Varsinaisen toiminnan kulut: henkilöstökulut
(39, 4000, 'Palkat ja palkkiot', ' ', 0, 0, 1),
(40, 4100, 'Eläkekulut', ' ', 0, 0, 1),
(41, 4150, 'Muut henkilösivukulut', 'Esim. sosiaaliturva- ja vakuutusmaksut', 0, 0, 1),
-- Varsinaisen toiminnan kulut: muut kulut
(42, 4200, 'Kulutili 1', 'Nimeä tili yhdistyksen oman toiminnan mukaan', 0, 0, 1),
(43, 4210, 'Kulutili 2', 'Nimeä tili yhdistyksen oman toiminnan mukaan', 0, 0, 1),
(44, 4220, 'Kulutili 3', 'Nimeä tili yhdistyksen oman toiminnan mukaan', 0, 0, 1),
(45, 4230, 'Kulutili 4', 'Nimeä tili yhdistyksen oman toiminnan mukaan', 0, 0, 1),
(46, 4240, 'Kulutili 5', 'Nimeä tili yhdistyksen oman toiminnan mukaan', 0, 0, 1),
(47, 4250, 'Kulutili 6', 'Nimeä tili yhdistyksen oman toiminnan mukaan', 0, 0, 1),
(48, 4260, 'Kulutili 7', 'Nimeä tili yhdistyksen oman toiminnan mukaan', 0, 0, 1),
(49, 4270, 'Kulutili 8', 'Nimeä tili yhdistyksen oman toiminnan mukaan', 0, 0, 1),
(50, 4400, 'Matkakulut', ' ', 0, 0, 1),
(51, 4500, 'Toimisto- ja postikulut', ' ', 0, 0, 1),
(52, 4600, 'Kokouskulut', 'Hallituksen ja yhdistyksen kokousten kulut', 0, 0, 1),
(53, 4700, 'Vakuutukset', ' ', 0, 0, 1),
(54, 4800, 'Jäsenmaksut muille yhteisöille', 'Esim. keskusjärjestön jäsenmaksu', 0, 0, 1),
(55, 4900, 'Muut toimintakulut', ' ', 0, 0, 1),
-- Varainhankinta
(56, 5000, 'Jäsenmaksut', ' ', 0, 0, 1),
(57, 5010, 'Kannatusjäsenmaksut', ' ', 0, 0, 1),
(58, 5100, 'Lahjoitukset', 'Saadut lahjoitukset', 0, 0, 1),
(59, 5200, 'Myyntituotot', 'Esim. kahvion ja tuotteiden myynti', 0, 0, 1),
(60, 5300, 'Tulotili 6', 'Nimeä tili yhdistyksen varainhankinnan mukaan', 0, 0, 1),
(61, 5310, 'Tulotili 7', 'Nimeä tili yhdistyksen varainhankinnan mukaan', 0, 0, 1),
(62, 5500, 'Myytyjen tuotteiden ostot', ' ', 0, 0, 1),
(63, 5600, 'Varainhankinnan muut kulut', ' ', 0, 0, 1),
(64, 5700, 'Kulutili 9', 'Nimeä tili yhdistyksen varainhankinnan mukaan', 0, 0, 1),
-- Sijoitus- ja rahoitustoiminta
(65, 6000, 'Korkotuotot', ' ', 0, 0, 1),
(66, 6100, 'Osinkotuotot', ' ', 0, 0, 1),
(67, 6500, 'Korkokulut', ' ', 0, 0, 1),
(68, 6600, 'Pankkikulut', 'Pankin palvelumaksut', 0, 0, 1),
-- Yleisavustukset
(69, 7000, 'Saadut yleisavustukset', 'Koko yhdistyksen toimintaan saadut avustukset', 0, 0, 1),
(70, 7100, 'Kunnan toiminta-avustus', ' ', 0, 0, 1),
-- Poistot
(71, 8000, 'Suunnitelman mukaiset poistot', ' ', 0, 0, 1),
-- Tilinpäätössiirrot
(72, 9000, 'Poistoeron muutos', ' ', 0, 0, 1),
(73, 9100, 'Vapaaehtoisten varausten muutos', ' ', 0, 0, 1),
-- Tuloslaskelman voittorivin tili
(74, 9990, 'Tilikauden yli-/alijäämä (tuloslaskelma)', 'Tilikauden tulos tuloslaskelmassa; ei kirjauksia tilikauden aikana', 0, 0, 1);

-- Mallit -------------------------------------------------------------------------------

INSERT INTO ma (maID, maNimi, maTyyppi, maSuojattu, maTulosMaID) VALUES
(1, 'Yhdistyksen tuloslaskelma', 1, 0, 0),
(2, 'Yhdistyksen tase', 2, 0, 1);

-- Tuloslaskelma: kaikki rivit saldopuolelle K. Ryhmän summarivi on sen tuotto-/kulujäämä.
INSERT INTO mr (mrID, mrmaID, mrTeksti, mrTilit, mrKaava, mrSaldoPuoli, mrIsEquation, mrIsLiikevaihto, mrIsVoitto, mrBelongsToGroup, mrGroupOrder) VALUES
(1, 1, 'Varsinainen toiminta', '', '', 'K', 0, 0, 0, 0, 1),
(2, 1, 'Varsinaisen toiminnan tuotot', '32,33,34,35,36,37,38,', '', 'K', 0, 1, 0, 1, 1),
(3, 1, 'Varsinaisen toiminnan kulut', '', '', 'K', 0, 0, 0, 1, 2),
(4, 1, 'Henkilöstökulut', '39,40,41,', '', 'K', 0, 0, 0, 3, 1),
(5, 1, 'Poistot', '71,', '', 'K', 0, 0, 0, 3, 2),
(6, 1, 'Muut kulut', '42,43,44,45,46,47,48,49,50,51,52,53,54,55,', '', 'K', 0, 0, 0, 3, 3),
(7, 1, 'Varainhankinta', '', '', 'K', 0, 0, 0, 0, 2),
(8, 1, 'Varainhankinnan tuotot', '56,57,58,59,60,61,', '', 'K', 0, 0, 0, 7, 1),
(9, 1, 'Varainhankinnan kulut', '62,63,64,', '', 'K', 0, 0, 0, 7, 2),
(10, 1, 'Sijoitus- ja rahoitustoiminta', '', '', 'K', 0, 0, 0, 0, 3),
(11, 1, 'Sijoitus- ja rahoitustoiminnan tuotot', '65,66,', '', 'K', 0, 0, 0, 10, 1),
(12, 1, 'Sijoitus- ja rahoitustoiminnan kulut', '67,68,', '', 'K', 0, 0, 0, 10, 2),
(13, 1, 'Yleisavustukset', '69,70,', '', 'K', 0, 0, 0, 0, 4),
(14, 1, 'Tilikauden tulos', '', '+1,+7,+10,+13,', 'K', 1, 0, 0, 0, 5),
(15, 1, 'Tilinpäätössiirrot', '72,73,', '', 'K', 0, 0, 0, 0, 6),
(16, 1, 'Tilikauden ylijäämä (alijäämä)', '74,', '', 'K', 0, 0, 1, 0, 7);

-- Tase: Vastaavaa-puolen rivit saldopuolelle D, Vastattavaa-puolen K.
INSERT INTO mr (mrID, mrmaID, mrTeksti, mrTilit, mrKaava, mrSaldoPuoli, mrIsEquation, mrIsLiikevaihto, mrIsVoitto, mrBelongsToGroup, mrGroupOrder) VALUES
(17, 2, 'Vastaavaa', '', '', 'D', 0, 0, 0, 0, 1),
(18, 2, 'Pysyvät vastaavat', '', '', 'D', 0, 0, 0, 17, 1),
(19, 2, 'Aineettomat hyödykkeet', '1,', '', 'D', 0, 0, 0, 18, 1),
(20, 2, 'Aineelliset hyödykkeet', '2,3,', '', 'D', 0, 0, 0, 18, 2),
(21, 2, 'Sijoitukset', '4,', '', 'D', 0, 0, 0, 18, 3),
(22, 2, 'Vaihtuvat vastaavat', '', '', 'D', 0, 0, 0, 17, 2),
(23, 2, 'Vaihto-omaisuus', '5,', '', 'D', 0, 0, 0, 22, 1),
(24, 2, 'Saamiset', '7,8,9,10,', '', 'D', 0, 0, 0, 22, 2),
(25, 2, 'Rahoitusarvopaperit', '6,', '', 'D', 0, 0, 0, 22, 3),
(26, 2, 'Rahat ja pankkisaamiset', '11,12,13,', '', 'D', 0, 0, 0, 22, 4),
(27, 2, 'Vastattavaa', '', '', 'K', 0, 0, 0, 0, 2),
(28, 2, 'Oma pääoma', '', '', 'K', 0, 0, 0, 27, 1),
(29, 2, 'Sidotut rahastot', '15,', '', 'K', 0, 0, 0, 28, 1),
(30, 2, 'Vapaat rahastot', '14,16,17,', '', 'K', 0, 0, 0, 28, 2),
(31, 2, 'Edellisten tilikausien ylijäämä (alijäämä)', '18,', '', 'K', 0, 0, 0, 28, 3),
(32, 2, 'Tilikauden ylijäämä (alijäämä)', '19,', '', 'K', 0, 0, 0, 28, 4),
(33, 2, 'Tilinpäätössiirtojen kertymä', '20,', '', 'K', 0, 0, 0, 27, 2),
(34, 2, 'Pakolliset varaukset', '21,', '', 'K', 0, 0, 0, 27, 3),
(35, 2, 'Vieras pääoma', '', '', 'K', 0, 0, 0, 27, 4),
(36, 2, 'Pitkäaikainen vieras pääoma', '22,23,', '', 'K', 0, 0, 0, 35, 1),
(37, 2, 'Lyhytaikainen vieras pääoma', '24,25,26,27,28,29,30,31,', '', 'K', 0, 0, 0, 35, 2);

-- Asetukset ------------------------------------------------------------------------------

-- The name is a placeholder that the association replaces in the settings window; the fiscal
-- year is the year of the build.
INSERT INTO Settings (setSection, setKey, setString) VALUES
('VORKAM', 'VoittoTaseella', '19'),
('VORKAM', 'LaskettavaTili', '12'),
('VORKAM', 'Seurannimi', 'Yhdistys ry'),
('VORKAM', 'TilikausiAlku', '1.1.@VUOSI@'),
('VORKAM', 'TilikausiLoppu', '31.12.@VUOSI@'),
('VORKAM', 'EdTilikausiAlku', '1.1.@EDVUOSI@'),
('VORKAM', 'EdTilikausiLoppu', '31.12.@EDVUOSI@');
