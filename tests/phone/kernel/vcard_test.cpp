#include "phone/kernel/vcard.hpp"

#include <filesystem>
#include <gtest/gtest.h>

// LeakSanitizer asks for this. Evolution's parser forgets a GLib string for some damaged cards; nothing else
// here allocates with GLib, so nothing of ours is excused.
extern "C" char const* __lsan_default_suppressions() { return "leak:libglib-2.0\n"; }

namespace phone {
namespace {

VcardContacts fileNamed(char const* name)
{
    auto contacts = readVcardFile(std::filesystem::path(CORVEL_TEST_DATA) / "vcard" / name);
    EXPECT_TRUE(contacts) << contacts.message();
    return contacts ? *contacts : VcardContacts {};
}

VcardContact cardWith(std::string const& lines, std::vector<std::string>* problems = nullptr)
{
    auto contacts = readVcards("BEGIN:VCARD\nVERSION:3.0\nN:Quill;Ada\n" + lines + "END:VCARD\n", "test.vcf");
    EXPECT_TRUE(contacts) << contacts.message();
    if (!contacts || contacts->contacts.empty())
        return {};
    if (problems)
        *problems = contacts->problems;
    return contacts->contacts[0];
}

bool isJpeg(std::optional<Bytes> const& bytes)
{
    return bytes && bytes->size() == 811 && (*bytes)[0] == 0xFF && (*bytes)[1] == 0xD8
        && bytes->back() == 0xD9;
}

using Values = std::vector<LabeledValue>;

TEST(Vcard, ReadsAnIphonesExport)
{
    auto const file = fileNamed("iphone.vcf");
    EXPECT_EQ(file.problems, std::vector<std::string>());
    ASSERT_EQ(file.contacts.size(), 4U);

    auto const& livia = file.contacts[0];
    EXPECT_EQ(livia.givenName, "Livia");
    EXPECT_EQ(livia.familyName, "Marchetti");
    EXPECT_EQ(livia.identifier, "3b0c5b7e-5d1a-4f0e-9c55-0c6a5a7f1e21");
    EXPECT_EQ(livia.phones,
        Values({ { "mobile", "+39 055 0100 221" }, { "iPhone", "+39 055 0100 222" },
            { "home fax", "+39 055 0100 223" } }));
    EXPECT_EQ(livia.emails,
        Values({ { "home", "livia.marchetti@example.org" }, { "Choir", "livia@studio.example" } }));
    EXPECT_EQ(livia.birthday, (Birthday { 18, 6, 1984 }));
    EXPECT_TRUE(isJpeg(livia.photo));

    auto const& gokce = file.contacts[1];
    EXPECT_EQ(gokce.givenName + gokce.familyName, "GökçeŞahin");
    EXPECT_EQ(gokce.birthday, (Birthday { 29, 2, std::nullopt }));
    EXPECT_EQ(gokce.phones, Values({ { "work", "(0212) 555 01 42" } }));
    EXPECT_FALSE(gokce.photo);
    EXPECT_FALSE(gokce.identifier.empty());

    auto const& bakery = file.contacts[2];
    EXPECT_EQ(bakery.givenName, "Corner Bakery");
    EXPECT_EQ(bakery.familyName, "");
    EXPECT_EQ(bakery.phones, Values({ { "main", "+1 (555) 010-0199" } }));

    EXPECT_EQ(file.contacts[3].givenName, "נועה");
    EXPECT_EQ(file.contacts[3].familyName, "בן־דוד");
}

TEST(Vcard, ReadsGooglesExport)
{
    auto const file = fileNamed("google.vcf");
    ASSERT_EQ(file.contacts.size(), 3U);

    auto const& tomasz = file.contacts[0];
    EXPECT_EQ(tomasz.givenName, "Tomasz");
    EXPECT_EQ(tomasz.familyName, "Wójcik-Østergård");
    EXPECT_EQ(tomasz.emails, Values({ { "home", "tomasz@example.net" }, { "", "t.w@work.example" } }));
    EXPECT_EQ(tomasz.phones,
        Values({ { "mobile", "+48 22 555 0177" }, { "work fax", "+48 22 555 0178" },
            { "Boat", "+48 22 555 0179" } }));
    EXPECT_EQ(tomasz.birthday, (Birthday { 11, 3, 1979 }));
    EXPECT_FALSE(tomasz.photo);

    EXPECT_EQ(file.contacts[1].birthday, (Birthday { 4, 7, std::nullopt }));
    EXPECT_EQ(file.contacts[1].givenName + file.contacts[1].familyName, "娜李");
    EXPECT_EQ(file.contacts[2].emails, Values({ { "", "only.address@example.com" } }));

    ASSERT_EQ(file.problems.size(), 2U);
    EXPECT_NE(
        file.problems[0].find("google.vcf', card 1 (Tomasz Wójcik-Østergård): a photo that lies elsewhere"),
        std::string::npos)
        << file.problems[0];
    EXPECT_NE(file.problems[1].find("card 4: left out"), std::string::npos) << file.problems[1];
}

TEST(Vcard, ReadsNextcloudsVersion4)
{
    auto const file = fileNamed("nextcloud.vcf");
    ASSERT_EQ(file.contacts.size(), 3U);

    auto const& ingrid = file.contacts[0];
    EXPECT_EQ(ingrid.givenName, "Ingrid 🎻");
    EXPECT_EQ(ingrid.identifier, "0d2e0b8e-6f5c-4f7e-8a8b-2a8e1f7d9b10");
    EXPECT_EQ(ingrid.phones, Values({ { "mobile", "+47-55-501-234" }, { "home", "55 50 12 35" } }));
    EXPECT_EQ(
        ingrid.emails, Values({ { "work", "ingrid@fiddle.example" }, { "home", "ingrid.h@example.org" } }));
    EXPECT_EQ(ingrid.birthday, (Birthday { 2, 4, 1991 }));
    ASSERT_TRUE(ingrid.photo);
    EXPECT_EQ(std::string(ingrid.photo->begin() + 1, ingrid.photo->begin() + 4), "PNG");

    EXPECT_EQ(file.contacts[1].birthday, (Birthday { 18, 6, std::nullopt }));
    EXPECT_TRUE(isJpeg(file.contacts[1].photo));

    EXPECT_EQ(file.contacts[2].phones[0].label, "work");
    EXPECT_FALSE(file.contacts[2].birthday);
    ASSERT_EQ(file.problems.size(), 1U);
    EXPECT_NE(
        file.problems[0].find("card 3 (Ada Quill): the birthday 'circa 1800' is no date"), std::string::npos);
}

TEST(Vcard, ReadsAnOldPhonesVersion21)
{
    auto const file = fileNamed("old_phone.vcf");
    EXPECT_EQ(file.problems, std::vector<std::string>());
    ASSERT_EQ(file.contacts.size(), 1U);
    auto const& joerg = file.contacts[0];
    EXPECT_EQ(joerg.givenName, "Jörg");
    EXPECT_EQ(joerg.familyName, "Müller");
    EXPECT_EQ(joerg.phones, Values({ { "mobile", "+49 30 5550 0142" }, { "home", "030 5550 0143" } }));
    EXPECT_EQ(joerg.birthday, (Birthday { 28, 2, 1966 }));
    EXPECT_TRUE(isJpeg(joerg.photo));
}

TEST(Vcard, ReadsBirthdaysAsTheyCome)
{
    auto const birthday = [](std::string const& line) { return cardWith(line + "\n").birthday; };
    EXPECT_EQ(birthday("BDAY:1984-06-18"), (Birthday { 18, 6, 1984 }));
    EXPECT_EQ(birthday("BDAY;VALUE=DATE:19840618"), (Birthday { 18, 6, 1984 }));
    EXPECT_EQ(birthday("BDAY:1984-06-18T23:00:00Z"), (Birthday { 18, 6, 1984 }));
    EXPECT_EQ(birthday("BDAY:--06-18"), (Birthday { 18, 6, std::nullopt }));
    EXPECT_EQ(birthday("BDAY:--0229"), (Birthday { 29, 2, std::nullopt }));
    EXPECT_EQ(birthday("BDAY;X-APPLE-OMIT-YEAR=1604:1604-06-18"), (Birthday { 18, 6, std::nullopt }));
    EXPECT_EQ(birthday("BDAY:"), std::nullopt);
    for (char const* bad :
        { "1984", "1984-06", "1983-02-29", "--1340", "1984-6-8", "18.06.1984", "x", "1984-06-18x" })
        EXPECT_EQ(birthday(std::string("BDAY:") + bad), std::nullopt) << bad;
}

TEST(Vcard, TellsWhichPhotosItCannotRead)
{
    std::vector<std::string> problems;
    for (char const* photo : { "PHOTO:data:image/png;base64,@@@@", "PHOTO:data:image/png,raw",
             "PHOTO:http://example.org/a.png", "PHOTO;ENCODING=b;TYPE=JPEG:", "PHOTO:nonsense" }) {
        EXPECT_FALSE(cardWith(std::string(photo) + "\n", &problems).photo) << photo;
        EXPECT_EQ(problems.size(), 1U) << photo;
    }
}

TEST(Vcard, ReadsOldEncodings)
{
    EXPECT_EQ(cardWith("TEL:1\nNOTE:caf\xE9\n").familyName, "Quill");
    auto const latin = readVcards(
        "BEGIN:VCARD\r\nVERSION:2.1\r\nN;CHARSET=ISO-8859-1:M\xFCller;J\xF6rg\r\nEND:VCARD\r\n", "a");
    ASSERT_TRUE(latin);
    EXPECT_EQ(latin->contacts[0].familyName, "Müller");
    auto const quoted = readVcards(
        "BEGIN:VCARD\r\nVERSION:2.1\r\nN;ENCODING=QUOTED-PRINTABLE;CHARSET=ISO-8859-1:M=FCller;J=\r\n=F6rg\r\nEND:VCARD\r\n",
        "a");
    ASSERT_TRUE(quoted);
    EXPECT_EQ(quoted->contacts[0].familyName, "Müller");
    EXPECT_EQ(quoted->contacts[0].givenName, "Jörg");
    std::string utf16 = "\xFF\xFE";
    for (char c : std::string("BEGIN:VCARD\r\nVERSION:3.0\r\nN:Quill;Ada\r\nEND:VCARD\r\n"))
        (utf16 += c) += '\0';
    ASSERT_TRUE(readVcards(utf16, "a"));
    EXPECT_EQ(readVcards(utf16, "a")->contacts[0].givenName, "Ada");
}

TEST(Vcard, GivesAStableIdentifierToCardsWithoutOne)
{
    auto const one = cardWith("TEL:1\n").identifier;
    EXPECT_EQ(one, cardWith("TEL:1\n").identifier);
    EXPECT_NE(one, cardWith("TEL:2\n").identifier);
}

TEST(Vcard, SaysWhatIsWrongWithAFile)
{
    auto const message = [](std::string_view text) {
        auto const contacts = readVcards(text, "a.vcf");
        return contacts ? "none" : contacts.message();
    };
    EXPECT_EQ(message(""), "'a.vcf' holds no vCard");
    EXPECT_EQ(message("hello"), "'a.vcf' holds no vCard");
    EXPECT_EQ(message("BEGIN:VCARD\nN:a;b\n"), "'a.vcf' holds no vCard: the file is cut short");
    EXPECT_EQ(
        readVcardFile("/nowhere/a.vcf").message(), "cannot read '/nowhere/a.vcf': No such file or directory");
    EXPECT_EQ(readVcardFile("/tmp").message(), "cannot read '/tmp': Is a directory");

    auto const half = readVcards("BEGIN:VCARD\nN:Quill;Ada\nEND:VCARD\nBEGIN:VCARD\nN:Gone", "a.vcf");
    ASSERT_TRUE(half);
    EXPECT_EQ(half->contacts.size(), 1U);
    EXPECT_EQ(half->problems,
        std::vector<std::string>({ "'a.vcf', card 2: left out, since the file is cut short" }));
}

TEST(Vcard, SurvivesDamage)
{
    std::string good =
        "BEGIN:VCARD\r\nVERSION:3.0\r\nitem1.N;X=\"a;b\":Quill;Ada\\, Jr;;;\r\nitem1.X-ABLabel:_$!<Home>!$_\r\n"
        "TEL;TYPE=\"cell,voice\":1\r\nPHOTO;ENCODING=b:AAEC\r\n AwQF\r\nBDAY:--0618\r\nEND:VCARD\r\n";
    for (std::size_t place = 0; place < good.size(); ++place) {
        for (int change : { 0x01, 0x20, 0x80, 0xFF }) {
            std::string damaged = good;
            damaged[place] = static_cast<char>(damaged[place] ^ change);
            auto const contacts = readVcards(damaged, "a");
            EXPECT_TRUE(contacts || !contacts.message().empty());
        }
        auto const cut = readVcards(std::string_view(good).substr(0, place), "a");
        EXPECT_TRUE(cut || !cut.message().empty());
    }
    EXPECT_TRUE(readVcards("BEGIN:VCARD\nEND:VCARD\n", "a")->contacts.empty());
}

TEST(Vcard, ReadsAnAddressBookOfTenThousand)
{
    std::string text;
    for (int i = 0; i < 10'000; ++i) {
        text += "BEGIN:VCARD\r\nVERSION:3.0\r\nN:Family" + std::to_string(i)
            + ";Given;;;\r\nTEL;TYPE=CELL:" + std::to_string(i) + "\r\nEND:VCARD\r\n";
    }
    auto const contacts = readVcards(text, "a");
    ASSERT_TRUE(contacts);
    EXPECT_EQ(contacts->contacts.size(), 10'000U);
}

}
}
