// What small tables are taken for: the questions that are in doubt, and then the censuses or the
// problems.
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "tables/corrections.h"
#include "tables/guess.h"
#include "tables/reader.h"

namespace zorvel {
namespace {

std::string doubtsOf(const TableGuess& guess) {
    std::string shown;
    for (const TableDoubt doubt : guess.doubts) {
        constexpr const char* names[] = {"separator", "layout",       "names",   "counts",
                                         "stages",    "numbers",      "amounts", "visits",
                                         "dateOrder", "thousandsMark"};
        shown += std::string(names[static_cast<std::size_t>(doubt)]) + "? ";
    }
    return shown;
}

std::string takenFor(const std::string& text) {
    const TableGuess guess = guessTable(text, true);
    std::string shown = doubtsOf(guess);
    TextRows rows(bytesOf(text), guess.reading.form);
    const TableRecords records = readTable(rows, guess.reading);
    if (records.problems.count > 0) return shown + remarkText(records.problems.kept.front());
    for (const MockCensus& census : records.censuses) {
        shown += census.name + ":";
        for (const MockTaxon& taxon : census.taxa) {
            shown += " " + taxon.name.str() + "=" + std::to_string(taxon.abundance);
        }
        shown += "; ";
    }
    return shown;
}

struct TakenCase {
    const char* text;
    const char* taken;
};

void expectTaken(const std::vector<TakenCase>& cases) {
    for (const auto& [text, taken] : cases) EXPECT_EQ(takenFor(text), taken) << text;
}

TEST(TableGuess, RecordsAreKnownByTheirWords) {
    expectTaken(
        {{"Locatie,Soort,Aantal\nVeld,Merel,3\nVeld,Mees,2\nBos,Merel,6\n",
          "Veld: Merel=3 Mees=2; Bos: Merel=6; "},
         {"STANOWISKO;Gatunek;Liczba osobnik\u00f3w\nLas;Sroka;3\nBagno;Sroka;1\n",
          "Las: Sroka=3; Bagno: Sroka=1; "},
         {"Localita\u0300;Specie;N. individui\nBosco;Rana;4\nStagno;Rana;7\n",
          "Bosco: Rana=4; Stagno: Rana=7; "},
         {"Date,Species,Count\n2022-06-01,Noctua,3\n2022-06-08,Noctua,5\n",
          "2022-06-01: Noctua=3; 2022-06-08: Noctua=5; "},
         {"Site,Family,Count\nS1,Baetidae,12\nS2,Baetidae,3\n",
          "S1: Baetidae=12; S2: Baetidae=3; "},
         {"Locatienummer,Datum bemonstering,Soortnaam,Aantal exemplaren\n"
          "12,2021-05-03,Daphnia,33\n12,2021-05-15,Bosmina,4\n14,2021-05-15,Daphnia,9\n",
          "12: Daphnia=33; 12: Bosmina=4; 14: Daphnia=9; "},
         {"Plot,Species,Total\nA,Poa,4\nB,Poa,9\n", "A: Poa=4; B: Poa=9; "},
         {"Site,Species,Presence\nA,Poa,1\nA,Bellis,0\nB,Poa,0\n", "A: Poa=1; B:; "},
         {"SiteID,BirdSpecies,NumIndividuals\nA,Robin,3\nB,Wren,1\n", "A: Robin=3; B: Wren=1; "},
         {"tree,plot,species,dbh_cm\n1,A,Fagus,30\n2,A,Fagus,22\n", "A: Fagus=2; "}});
}

TEST(TableGuess, RecordsAreKnownByWhatColumnsHold) {
    expectTaken({{"Ter\u00fclet;Faj;Egyed\nR\u00e9t 1;Lacerta agilis;2\nR\u00e9t 1;Rana arvalis;5\n"
                  "R\u00e9t 2;Lacerta agilis;1\n",
                  "R\u00e9t 1: Lacerta agilis=2 Rana arvalis=5; R\u00e9t 2: Lacerta agilis=1; "},
                 {"A1,Turdus merula,3\nA1,Parus major,2\nB2,Turdus merula,1\n",
                  "A1: Turdus merula=3 Parus major=2; B2: Turdus merula=1; "},
                 {"Foo;Bar;Baz\nL;S;3\nL;R;1\nM;R;2\nM;S;2\n", "names? S: L=3 M=2; R: L=1 M=2; "},
                 {"Gilde,Species,Plot 1\np,Amara aenea,3\np,Carabus auratus,1\nq,Nebria salina,2\n",
                  "Plot 1: Amara aenea=3 Carabus auratus=1 Nebria salina=2; "}});
}

// What was no count before it was asked for.
TEST(TableGuess, CountsOfRecordsAreAskedForWhereTheyMayBeOthers) {
    expectTaken(
        {{"Site,Species,Males,Females\nA,Lasius,2,3\nB,Lasius,4,4\n",
          "counts? A: Lasius=5; B: Lasius=8; "},
         {"Site,Species,R1,R2\nA,Poa,1,2\nA,Bellis,0,1\nB,Poa,4,0\n",
          "layout? counts? A: Poa=3 Bellis=1; B: Poa=4; "},
         {"Point,Species,0-25m,25-50m\nP1,Turdus,1,2\nP1,Parus,0,1\n",
          "counts? P1: Turdus=3 Parus=1; "},
         {"Plot,Species,Cover (%)\nA,Poa,20\nB,Poa,60\n", "counts? A: Poa=20; B: Poa=60; "},
         {"Plot,Species,Xyz\nA,Fagus,30\nA,Picea,22\nB,Picea,41\n",
          "counts? A: Fagus=30 Picea=22; B: Picea=41; "},
         {"Site,Species,Count\nA,Poa,many\nA,Bellis,few\n", "C2: \"many\" is not a number."},
         {"Plot,Species,Biomass\nA,Poa,2.5\nB,Poa,3.1\n",
          "counts? C2: 2.5 is not a whole number. Zorvel counts individuals."},
         {"eventID,scientificName,organismQuantity,organismQuantityType\n"
          "E,Poa,20,% cover\nF,Poa,5,% cover\n",
          "counts? E: Poa=20; F: Poa=5; "}});
}

TEST(TableGuess, PartsOfNamesAreJoined) {
    expectTaken(
        {{"Transect,Quadrat,Species,Count\nT1,1,Poa,3\nT1,2,Poa,1\nT2,1,Poa,5\n",
          "T1 1: Poa=3; T1 2: Poa=1; T2 1: Poa=5; "},
         {"Year,Site,Replicate,Poa,Bellis\n2020,N,1,3,0\n2020,N,2,1,1\n2021,N,1,0,4\n",
          "2020 N 1: Poa=3; 2020 N 2: Poa=1 Bellis=1; 2021 N 1: Bellis=4; "},
         {"Station,Depth (m),Species,Count\nA,0,Acartia,12\nA,20,Acartia,30\n",
          "A 0: Acartia=12; A 20: Acartia=30; "},
         // What the others say already is not repeated, and dates part censuses anyway.
         {"Site,Site code,Plot,Poa,Bellis\nNorth,N,N1,3,0\nNorth,N,N2,1,1\nSouth,S,S1,0,4\n",
          "North N1: Poa=3; North N2: Poa=1 Bellis=1; South S1: Bellis=4; "},
         {"Site,Plot,Poa,Bellis\nN,N1,3,0\nN,N2,1,1\nS,S1,0,4\n",
          "N1: Poa=3; N2: Poa=1 Bellis=1; S1: Bellis=4; "},
         {"Site,Year,Date,Species,Count\nA,2020,2020-05-01,Poa,1\nA,2021,2021-05-01,Poa,2\n",
          "A: Poa=1; A: Poa=2; "},
         // Of a header that is not known, it is asked.
         {"Site,Foo,Species,Count\nA,up,Poa,3\nA,down,Poa,1\nB,up,Poa,2\nB,down,Poa,4\n",
          "names? A up: Poa=3; A down: Poa=1; B up: Poa=2; B down: Poa=4; "},
         {"Site,Sex,Species,Count\nA,m,Poa,3\nA,f,Poa,1\nB,m,Poa,2\nB,f,Poa,4\n",
          "A: Poa=4; B: Poa=6; "},
         {"gbifID,species,locality,eventDate,depth,individualCount\n"
          "1,Abra,Bay,2018-09-09,12.5,3\n2,Abra,Bay,2018-09-09,,1\n",
          "Bay: Abra=4; "},
         {"Site,Plot,Species,Count\nN,1,Poa,3\n,2,Poa,2\n",
          "A3: A part of the name of the census is blank."}});
}

TEST(TableGuess, MeasurementsAreNoSpeciesAndCensusesMayHaveTheirNames) {
    expectTaken(
        {{"Lake,Area m2,Volume_L,Max depth,pH,Temp.,Effort,Daphnia,Bosmina\n"
          "L1,2,10,6,7,14,3,33,4\nL2,2,10,4,8,12,3,0,9\n",
          "L1: Daphnia=33 Bosmina=4; L2: Bosmina=9; "},
         {"Habitat,Carabus,Amara\nSand,3,0\nArea North,0,5\n",
          "Sand: Carabus=3; Area North: Amara=5; "},
         {"Species,Sand,Rock\nNereis diversicolor,3,0\nMytilus edulis,0,4\n",
          "Sand: Nereis diversicolor=3; Rock: Mytilus edulis=4; "},
         {"Species,Bog,\nPoa annua,1,2\nBellis perennis,3,4\n",
          "C1: There is no name of a census above these counts."},
         {"Species,Bog,Mire\nYear,2020,2021\nPoa annua,3,0\nAltitude,12,34\n",
          "A2: \"Year\" is the label of years or of a measurement, not of a species. Leave the row "
          "out, or count it among the header rows."},
         {"Species,Bog,Mire\nPh. collybita,3,0\nOxygen weed,1,4\nSand,0,1\nYear,3,4\n",
          "Bog: Ph. collybita=3 Oxygen weed=1 Year=3; Mire: Oxygen weed=4 Sand=1 Year=4; "},
         {"Unnamed: 0,Plot,Poa,Bellis\n0,A,3,1\n1,B,0,2\n", "A: Poa=3 Bellis=1; B: Bellis=2; "},
         {"Nr;Bach;Baetis rhodani;Gammarus pulex\n1;Elz;12;3\n2;Dreisam;0;40\n",
          "Elz: Baetis rhodani=12 Gammarus pulex=3; Dreisam: Gammarus pulex=40; "},
         {"Sampling site,X,Y,Poa annua,Bellis "
          "perennis\nA,654321,5123456,3,1\nB,654400,5123500,0,2\n",
          "A: Poa annua=3 Bellis perennis=1; B: Bellis perennis=2; "},
         {"Species,Oasis 1,Oasis 2\nDate palm,12,7\nTamarisk,3,0\n",
          "Oasis 1: Date palm=12 Tamarisk=3; Oasis 2: Date palm=7; "},
         {"\"Girdled\" \"Logged\"\n\"sp1\" 46 88\n\"sp2\" 22 22\n\"sp3\" 17 16\n",
          "Girdled: sp1=46 sp2=22 sp3=17; Logged: sp1=88 sp2=22 sp3=16; "},
         {"Date,Trap,Carabidae,Araneae\n2021-05-03,1,3,12\n2021-05-03,2,1,5\n"
          "2021-05-17,1,0,8\n",
          "1: Carabidae=3 Araneae=12; 2: Carabidae=1 Araneae=5; 1: Araneae=8; "},
         {"Species,Area 1,Depth 10\nPoa annua,3,0\nBellis perennis,0,4\n",
          "Area 1: Poa annua=3; Depth 10: Bellis perennis=4; "},
         {"Site,Birds,Fish\nA,3,0\nB,1,4\n", "A: Birds=3; B: Birds=1 Fish=4; "},
         {"Sample,Pinus,Betula,Lycopodium added,Lycopodium counted\nA,52,17,18583,92\n"
          "B,9,1,18583,63\n",
          "A: Pinus=52 Betula=17; B: Pinus=9 Betula=1; "},
         {"Site,Poa annua,Bellis perennis,Rumex acetosa\nA,0.5,1,2\nB,2.5,3,4\n",
          "B2: 0.5 is not a whole number. Zorvel counts individuals."}});
}

TEST(TableGuess, CoverIsRefusedAndNeverAHeader) {
    const char* const first = "B2: 20% is not a whole number. Zorvel counts individuals.";
    expectTaken(
        {{"Species,R1,R2\nPoa annua,20%,5%\nBellis perennis,40%,3%\n", first},
         {"Plot,Poa,Bellis\nA,20%,5%\nB,40%,3%\nC,40%,3%\nD,40%,3%\n", first},
         {"Plot,Poa,Bellis\nA,2a,r\nB,+,2b\nC,r,+\n", "B2: \"2a\" is not a number."},
         {"Site,Species,Individuals\nA,12,130\nB,8,55\n",
          "row 1: No column holds counts, so that no species would be read. Choose what the "
          "columns hold."}});
}

TEST(TableGuess, HeadersOfGroupsAreMergedCells) {
    expectTaken(
        {{",Site A,,Site B,,\nSpecies,1,2,1,2,Total\nPoa,3,0,1,5,9\nBellis,0,2,4,1,7\n",
          "Site A 1: Poa=3; Site A 2: Bellis=2; Site B 1: Poa=1 Bellis=4; Site B 2: Poa=5 "
          "Bellis=1; "},
         {"Plot,Poa,Bellis\n,ind.,ind.\nA,3,1\nB,0,2\n", "A: Poa=3 Bellis=1; B: Bellis=2; "},
         {"Beetles of 2016,,,\n,,,\nSpecies,North,South,East\nCarabidae,,,\nAbax ater,2,,\n,,,\n"
          "Staphylinidae,,,\nOcypus olens,,1,3\n,,,\nSilphidae,,,\nSilpha atrata,1,,4\n",
          "North: Abax ater=2 Silpha atrata=1; South: Ocypus olens=1; East: Ocypus olens=3 "
          "Silpha atrata=4; "},
         {"Plot,Poa,Bellis,,Plot,Poa,Bellis\nA,3,1,,C,1,1\nB,2,2,,D,0,4\n",
          "E1: This is also the header of column A. Put tables that stand side by side below "
          "each other."}});
}

TEST(TableGuess, TotalsAndErrorsAreNoNames) {
    expectTaken(
        {{"Art;RL;BF 1;BF 2;Summe\nAbax ater;*;14;-;14\nAmara aenea;V;3;7;10\n"
          "Individuen;;17;7;24\nArtenzahl;;2;1;2\n",
          "BF 1: Abax ater=14 Amara aenea=3; BF 2: Amara aenea=7; "},
         {"Plot,Poa annua,Bellis perennis,Totaal\nA,3,1,5\nB,0,2,4\n",
          "A: Poa annua=3 Bellis perennis=1; B: Bellis perennis=2; "},
         {"Species,North,South\nAmara aenea,1,4\nTotal Carabidae,1,4\nOcypus olens,2,2\n",
          "row 3: The row is named as a total, but more rows follow. Leave it out, or give it "
          "another name."},
         // Sums are known without their words, but a census may have those of two others.
         {"Plot,Poa,Bellis,Zzz\nA,3,1,4\nB,0,2,2\nC,5,5,10\nYyy,8,8,16\n",
          "A: Poa=3 Bellis=1; B: Bellis=2; C: Poa=5 Bellis=5; "},
         {"Plot,Poa,Bellis,Rumex\nP1,3,1,2\nP2,2,2,1\nP3,5,3,3\n",
          "P1: Poa=3 Bellis=1 Rumex=2; P2: Poa=2 Bellis=2 Rumex=1; P3: Poa=5 Bellis=3 "
          "Rumex=3; "},
         {"Zeilenbeschriftungen,F1,F2,Gesamtergebnis\nAmara aenea,3,,3\nNebria salina,1,7,8\n"
          "Gesamtergebnis,4,7,11\n",
          "F1: Amara aenea=3 Nebria salina=1; F2: Nebria salina=7; "},
         {"Site,Species,Count\nA,Poa,3\nA,Total,3\nB,Poa,1\n",
          "B3: \"Total\" is the name of a total. Leave such rows out."},
         {"Gatunek,J 1,J 2\nSum pospolity,3,0\nSzczupak,1,2\n",
          "J 1: Sum pospolity=3 Szczupak=1; J 2: Szczupak=2; "},
         {"Genus,Species,P1,P2\nSalmo,Salmo trutta,1,0\nEsox,lucius,0,2\n",
          "P1: Salmo trutta=1; P2: Esox lucius=2; "},
         {"Plot,Poa annua,Bellis perennis\n#REF!,3,2\nP2,1,4\n",
          "A2: #REF! is the error of a formula. Correct it in the spreadsheet program and save the "
          "table again."}});
}

TEST(TableGuess, WhatNumbersRecordsOrIsNoCountIsNotTakenForOne) {
    expectTaken(
        {{"Parcela;\u00c1rvore n.\u00ba;Esp\u00e9cie\nA;1;Ulmus\nA;2;Ulmus\nA;3;Pinus\nA;4;Ulmus\n"
          "B;1;Pinus\nB;2;Pinus\nB;3;Ulmus\n",
          "A: Ulmus=3 Pinus=1; B: Pinus=2 Ulmus=1; "},
         {"ASV,Genus,Species,S1,S2\nASV_1,Bacillus,NA,4,0\nASV_2,Bacillus,NA,1,2\n"
          "ASV_3,Bacillus,subtilis,3,9\n",
          "S1: ASV_1=4 ASV_2=1 ASV_3=3; S2: ASV_2=2 ASV_3=9; "},
         {"Depth (cm),Pinus,Picea,Spore,Pollen sum\n4,61,9,5,70\n8,55,4,6,59\n",
          "4: Pinus=61 Picea=9 Spore=5; 8: Pinus=55 Picea=4 Spore=6; "},
         {"Trawls 2019: biomass (g)\nSpecies,E1,E2\nMerluccius merluccius,4210,3875\n"
          "Trachurus trachurus,12650,980\n",
          "amounts? E1: Merluccius merluccius=4210 Trachurus trachurus=12650; "
          "E2: Merluccius merluccius=3875 Trachurus trachurus=980; "},
         {"Art;See A;See B\nBl\u00e4sshuhn;5'190;1\u2019276\nKormoran;128;k.A.\n",
          "See A: Bl\u00e4sshuhn=5190 Kormoran=128; See B: Bl\u00e4sshuhn=1276; "}});
}

TEST(TableGuess, SexesAndStagesAreAddedOrAskedFor) {
    const char* const added = "A: Poa=3 Bellis=7; B: Poa=1 Bellis=4; ";
    expectTaken(
        {{"Site,Poa,,Bellis,\n,M,F,M,F\nA,1,2,3,4\nB,0,1,2,2\n", added},
         {"Site,Poa,Poa,Poa,Bellis,Bellis,Bellis\n,♂,♀,Total,♂,♀,Total\nA,1,2,3,3,4,7\n"
          "B,0,1,1,2,2,4\n",
          added},
         {"Species,A,,B,\n,adult,larva,adult,larva\nPoa,1,2,0,1\nBellis,3,4,2,2\n", added},
         {"Species,A,A,B,B\nSex,M,F,M,F\nPoa,1,2,0,1\nBellis,3,4,2,2\n", added},
         {"Site,Stage,Poa,Bellis\nA,adult,1,3\nA,larva,2,4\nB,adult,1,2\nB,larva,0,2\n", added},
         {"Site,Xyz,Poa,Bellis\nA,juv.,1,3\nA,ad.,2,4\nB,juv.,1,2\nB,ad.,0,2\n", added},
         // Another date makes another census; the sex of a whole census does not matter.
         {"Site,Date,Sex,Poa\nA,2021-05-01,m,1\nA,2021-05-01,f,2\nA,2021-06-01,m,4\n",
          "A: Poa=3; A: Poa=4; "},
         {"Site,Sex,Poa\nA,m,1\nB,f,2\n", "A: Poa=1; B: Poa=2; "},
         {"Site,Sex,Poa\nA,m,1\nA,f,2\nA,m,4\n", "A: Poa=1; A: Poa=2; A: Poa=4; "},
         {"Core,Alter,Poa,Rumex\nA,10,3,1\nA,20,2,2\n", "A: Poa=3 Rumex=1; A: Poa=2 Rumex=2; "},
         {"Species,Core,Core\nAlter,1000,2000\nPinus sylvestris,3,4\nAlnus incana,1,2\n",
          "Core: Pinus sylvestris=3 Alnus incana=1; Core: Pinus sylvestris=4 Alnus incana=2; "},
         {"Species,\u2642,\u2640\nDate,2021-05-01,2021-05-01\nPoa,3,4\n",
          "stages? \u2642 + \u2640: Poa=7; "},
         {"Site,Sex,Poa,Rumex\nA,m,1,1\n,f,2,2\nB,m,3,3\n,f,4,4\n", "A3: The census has no name."},
         {"Site,M,F,juv\nA,3,4,1\nB,1,0,0\n", "stages? A: M + F + juv=8; B: M + F + juv=1; "},
         {"Species,♂,♀\nPoa,3,4\nBellis,1,0\n", "stages? ♂ + ♀: Poa=7 Bellis=1; "}});
}

TEST(TableGuess, SexesAndStagesBehindNamesAreAskedFor) {
    expectTaken(
        {{"Site,Parus major M,Parus major F,Parus major juv,Poa annua\nA,1,2,3,4\nB,0,1,0,2\n",
          "stages? A: Parus major=6 Poa annua=4; B: Parus major=1 Poa annua=2; "},
         {"Site,Larus sp.,Larus sp. (juv.),Parus.major.ad,Parus.major.imm\nA,1,2,3,4\n",
          "stages? A: Larus sp.=3 Parus.major=7; "},
         {"Site,Poa ♂,Poa♀,Poa_juv. m\nA,1,2,3\n", "stages? A: Poa=6; "},
         {"Site,Parus,Parus\n,major M,major F\nA,1,2\n", "stages? A: Parus major=3; "},
         {"Species,Bog adult,Bog larva,Fen adult\nPoa annua,1,2,0\nBellis perennis,3,0,4\n",
          "stages? Bog: Poa annua=3 Bellis perennis=3; Fen adult: Bellis perennis=4; "},
         {"Species,Bog juv,Bog adult,Plot A,Plot F,Plot M\nPoa annua,1,2,3,4,5\n",
          "stages? Bog: Poa annua=3; Plot A: Poa annua=3; Plot F: Poa annua=4; "
          "Plot M: Poa annua=5; "},
         // A letter among others, a single column of a stage, and a word within a name.
         {"Species,Plot A,Plot F,Plot M\nPoa annua,1,2,3\n",
          "Plot A: Poa annua=1; Plot F: Poa annua=2; Plot M: Poa annua=3; "},
         {"Species,A,F,M\nPoa annua,1,2,3\n", "A: Poa annua=1; F: Poa annua=2; M: Poa annua=3; "},
         {"Site,Parus major,Larus juv\nA,1,2\n", "A: Parus major=1 Larus juv=2; "},
         {"Site,Egg moth,Queen fly\nA,1,2\n", "A: Egg moth=1 Queen fly=2; "}});
}

TEST(TableGuess, NumbersThatCanHardlyBeCountsAreAskedFor) {
    expectTaken(
        {{"Site,Xyz,Poa,Rumex\nA,2019,3,4\nB,2020,1,0\nC,2019,0,2\n",
          "numbers? A: Poa=3 Rumex=4; B: Poa=1; C: Rumex=2; "},
         {"Site,Xyz,Poa\nA,14,3\nB,14,1\nC,14,0\nD,14,3\n",
          "numbers? A: Poa=3; B: Poa=1; C:; D: Poa=3; "},
         {"Site,Xyz,Poa\nA,5,3\nB,10,1\nC,15,0\nD,20,3\nE,25,1\n",
          "numbers? A: Poa=3; B: Poa=1; C:; D: Poa=3; E: Poa=1; "},
         {"Site,Xyz,Poa\nA,121,3\nB,135,1\nC,150,0\nD,151,3\nE,170,1\nF,200,1\n",
          "numbers? A: Poa=3; B: Poa=1; C:; D: Poa=3; E: Poa=1; F: Poa=1; "},
         {"Site,Xyz,Poa,Rumex\nA,450,3,4\nB,980,1,0\nC,610,0,2\nD,520,3,0\n",
          "numbers? A: Poa=3 Rumex=4; B: Poa=1; C: Rumex=2; D: Poa=3; "},
         {"Species,Xyz,North,South\nPoa,1001,3,4\nRumex,1004,1,0\nViola,1002,0,2\nAira,1007,1,1\n",
          "numbers? North: Poa=3 Rumex=1 Aira=1; South: Poa=4 Viola=2 Aira=1; "},
         // Names, few rows and numbers of many sizes say that they are counts.
         {"Site,Poa annua,Rumex\nA,14,3\nB,14,1\nC,14,0\nD,14,3\n",
          "A: Poa annua=14 Rumex=3; B: Poa annua=14 Rumex=1; C: Poa annua=14; "
          "D: Poa annua=14 Rumex=3; "},
         {"Site,Xyz,Poa\nA,14,3\nB,14,1\nC,14,0\n",
          "A: Xyz=14 Poa=3; B: Xyz=14 Poa=1; C: Xyz=14; "},
         {"Site,Xyz,Poa,Rumex\nA,450,3,4\nB,9800,1,0\nC,610,0,2\nD,520,3,0\n",
          "A: Xyz=450 Poa=3 Rumex=4; B: Xyz=9800 Poa=1; C: Xyz=610 Rumex=2; D: Xyz=520 Poa=3; "}});
}

// The roles that are given, and the questions that are left.
TEST(TableCorrections, EachQuestionIsSettledByAnAnswerOfItsOwn) {
    using enum ColumnRole;
    const std::string cover =
        "Cover of 2021\nSite,Xyz,Poa,Rumex\nA,2019,3,4\nB,2020,1,0\nC,2019,0,2\n";
    const std::string sexes = "Site,Species,Males,Females,Xyz\nA,Lasius,2,3,b\nB,Lasius,4,4,d\n";
    const std::string stages = "Site,Poa M,Poa F,Rumex\nA,1,2,3\nB,0,1,4\n";
    std::string times = "Site,Date,Species,Count,Xyz\n";
    for (const std::string minute : {"01", "07", "12", "40", "42", "55"}) {
        times += "A,2021-05-01 08:" + minute + ",Poa,1,b\n";
    }
    const struct {
        std::string text;
        std::map<std::size_t, ColumnRole> roles;
        const char* left;
    } cases[] = {{cover, {}, "numbers? amounts? "},
                 {cover, {{1, count}}, "amounts? "},
                 {cover, {{1, ignored}}, "amounts? "},
                 {cover, {{2, count}}, "numbers? "},
                 {cover, {{2, ignored}}, "numbers? amounts? "},
                 {cover, {{1, count}, {2, ignored}, {3, ignored}}, ""},
                 {sexes, {{4, ignored}}, "counts? "},
                 {sexes, {{3, ignored}}, ""},
                 {stages, {{3, ignored}}, "stages? "},
                 {stages, {{1, ignored}}, ""},
                 {times, {{4, ignored}}, "visits? "},
                 {times, {{1, ignored}}, ""}};
    for (const auto& [text, roles, left] : cases) {
        TableGuess guess = guessTable(text, true);
        TableCorrections corrections;
        corrections.roles = roles;
        applyCorrections(guess, corrections);
        TextRows rows(bytesOf(text), guess.reading.form);
        dropIdleDoubts(guess.doubts, readTable(rows, guess.reading).notices);
        EXPECT_EQ(doubtsOf(guess), left) << text;
    }
}

TEST(TableGuess, TimesOfRecordsMayBeNoneOfCensuses) {
    std::string records = "Site,Date,Species,Count\n";
    std::string visits = records;
    for (const std::string place : {"A", "B"}) {
        for (const std::string minute : {"01", "07", "12", "40"}) {
            const std::string row = place + ",2021-05-01 08:" + minute + ",Poa,";
            records += row + "1\n";
            visits += row + "1\n" + row + "2\n";
        }
    }
    EXPECT_EQ(guessTable(records, true).doubts, std::vector{TableDoubt::visits});
    EXPECT_EQ(guessTable(visits, true).doubts, std::vector<TableDoubt>{});
}

}  // namespace
}  // namespace zorvel
