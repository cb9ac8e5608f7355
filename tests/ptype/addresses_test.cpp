// MAC_ADDR, TIME_HHMMSS, IPV4, IPV4_MASK and TXPOWER_TYPE: what they take, what they print, and that they log nothing.
#include "ptype/converters.h"

bool operator==(const mac_addr &one, const mac_addr &other);
bool operator==(const mac_addr &one, const mac_addr &other)
{
    return memcmp(one.octet, other.octet, sizeof one.octet) == 0;
}

bool operator==(const ipv4_mask &one, const ipv4_mask &other);
bool operator==(const ipv4_mask &one, const ipv4_mask &other)
{
    return one.address == other.address && one.prefix == other.prefix;
}

namespace
{

using namespace apconf_test;
using testing::IsEmpty;

// Every test of this file: nothing is ever logged.
class SilentTypes : public testing::Test
{
protected:
    void TearDown() override { EXPECT_THAT(take_lines(log), IsEmpty()); }
    log_capture log;
};

using MacAddr = SilentTypes;
using TimeHhmmss = SilentTypes;
using Ipv4 = SilentTypes;
using Ipv4Mask = SilentTypes;
using TxpowerType = SilentTypes;

template <typename Value>
void expect_refused(ptype_to_value_fn *convert, const std::vector<const char *> &texts)
{
    for (const char *text : texts) {
        EXPECT_EQ(to_value<Value>(convert, text), std::nullopt) << "\"" << text << "\"";
        EXPECT_EQ(convert(text, nullptr, nullptr), -1) << "\"" << text << "\"";
    }
}

// Buffers of every size take the text up to their last byte, and no buffer takes nothing.
template <typename Value>
void expect_cut(ptype_to_string_fn *convert, const Value &value, const std::string &text)
{
    for (size_t size = 1; size <= text.size() + 2; ++size) {
        const printed output = print(convert, value, size);
        EXPECT_EQ(output.result, 0) << size;
        EXPECT_EQ(output.text, text.substr(0, size - 1)) << size;
    }
    const printed nothing = print(convert, value, 0);
    EXPECT_EQ(nothing.result, 0);
    EXPECT_EQ(convert(&value, nullptr, 64, nullptr), 0);
    EXPECT_EQ(convert(&value, nullptr, 0, nullptr), 0);
}

TEST_F(MacAddr, TakesOneOrTwoDigitsOfEitherCaseAndPrintsUpperCase)
{
    const auto value = to_value<mac_addr>(MAC_ADDR_to_ptype, "a:b:c:d:e:f");
    ASSERT_EQ(value, (mac_addr{{10, 11, 12, 13, 14, 15}}));
    EXPECT_EQ(to_text(MAC_ADDR_to_string, *value), "0A:0B:0C:0D:0E:0F");
    EXPECT_EQ(to_value<mac_addr>(MAC_ADDR_to_ptype, "00:1A:2b:3C:4d:FF"),
              (mac_addr{{0x00, 0x1A, 0x2B, 0x3C, 0x4D, 0xFF}}));
    EXPECT_EQ(to_text(MAC_ADDR_to_string, mac_addr{{0x00, 0x1A, 0x2B, 0x3C, 0x4D, 0xFF}}), "00:1A:2B:3C:4D:FF");
    EXPECT_EQ(MAC_ADDR_to_ptype("00:1A:2b:3C:4d:FF", nullptr, nullptr), 0);
}

TEST_F(MacAddr, KeepsTheLeniencyOfScanning)
{
    const mac_addr expected = {{1, 2, 3, 4, 5, 6}};
    for (const char *text : {"1:2:3:4:5:6 behind", "1:2:3:4:5:6:7", "1:2:3:4:5:06f", " 1: 2:\t3:4:5:6", "+1:2:3:4:5:6"})
        EXPECT_EQ(to_value<mac_addr>(MAC_ADDR_to_ptype, text), expected) << text;
    EXPECT_EQ(to_value<mac_addr>(MAC_ADDR_to_ptype, "-1:2:3:4:5:6"), (mac_addr{{255, 2, 3, 4, 5, 6}}));
}

TEST_F(MacAddr, RefusesWhatHasNoSixFields)
{
    expect_refused<mac_addr>(MAC_ADDR_to_ptype,
                             {"", " ", "1:2:3:4:5", "1:2:3:4:5:", "1:2:3:4:5:g", "001:2:3:4:5:6", "1-2-3-4-5-6",
                              "1 :2:3:4:5:6", "1::3:4:5:6", "001122334455", "g:2:3:4:5:6", ":1:2:3:4:5"});
}

TEST_F(MacAddr, PrintingIsCutToTheBuffer)
{
    expect_cut(MAC_ADDR_to_string, mac_addr{{1, 2, 3, 4, 5, 0xAB}}, "01:02:03:04:05:AB");
}

TEST_F(TimeHhmmss, IsSecondsSinceMidnight)
{
    EXPECT_EQ(to_value<uint32_t>(TIME_HHMMSS_to_ptype, "23:59:59"), 86399u);
    EXPECT_EQ(to_value<uint32_t>(TIME_HHMMSS_to_ptype, "0:0:0"), 0u);
    EXPECT_EQ(to_value<uint32_t>(TIME_HHMMSS_to_ptype, "01:02:03"), 3723u);
    EXPECT_EQ(to_value<uint32_t>(TIME_HHMMSS_to_ptype, "08:09:010"), 8u * 3600 + 9 * 60 + 10);
    EXPECT_EQ(TIME_HHMMSS_to_ptype("23:59:59", nullptr, nullptr), 0);
}

TEST_F(TimeHhmmss, KeepsTheLeniencyOfScanning)
{
    for (const char *text : {"1:2:3", " 1: 2:\n3", "+1:+2:+3", "1:2:3 behind", "1:2:3:4", "01:2:3.5", "1:2:3x",
                             "-4294967295:2:3", "1:-4294967294:3", "0000000000000000000001:2:3"})
        EXPECT_EQ(to_value<uint32_t>(TIME_HHMMSS_to_ptype, text), 3723u) << text;
}

TEST_F(TimeHhmmss, RefusesFieldsOutsideOfADayAlsoBeyond32Bits)
{
    expect_refused<uint32_t>(
        TIME_HHMMSS_to_ptype,
        {"24:00:00", "23:60:00", "23:59:60", "-1:0:0", "0:-1:0", "0:0:-1", "4294967296:0:0", "4294967297:2:3",
         "0:4294967296:0", "0:0:4294967296", "18446744073709551616:0:0", "18446744073709551617:0:0", "-4294967296:0:0",
         "-18446744073709551615:2:3", "99999999999999999999999999:0:0"});
}

TEST_F(TimeHhmmss, RefusesWhatHasNoThreeFields)
{
    expect_refused<uint32_t>(TIME_HHMMSS_to_ptype,
                             {"", " ", "12", "12:", "12:30", "12:30:", "12:30: ", "12:30:x", "12 :30:00", "12:30 :00",
                              "12.30.00", "x", ":30:00", "12::00", "0x1:2:3", "+:2:3", "-", "- 1:2:3", "12:30:+"});
}

TEST_F(TimeHhmmss, PrintsWithoutPaddingAndBeyondADay)
{
    EXPECT_EQ(to_text(TIME_HHMMSS_to_string, uint32_t{3661}), "1:1:1");
    EXPECT_EQ(to_text(TIME_HHMMSS_to_string, uint32_t{90000}), "25:0:0");
    EXPECT_EQ(to_text(TIME_HHMMSS_to_string, uint32_t{0}), "0:0:0");
    EXPECT_EQ(to_text(TIME_HHMMSS_to_string, uint32_t{86399}), "23:59:59");
    EXPECT_EQ(to_text(TIME_HHMMSS_to_string, uint32_t{UINT32_MAX}), "1193046:28:15");
    expect_cut(TIME_HHMMSS_to_string, uint32_t{86399}, "23:59:59");
}

TEST_F(Ipv4, HasItsFirstOctetInTheMostSignificantByte)
{
    EXPECT_EQ(to_value<uint32_t>(IPV4_to_ptype, "192.168.1.2"), 0xC0A80102u);
    EXPECT_EQ(to_value<uint32_t>(IPV4_to_ptype, "0.0.0.0"), 0u);
    EXPECT_EQ(to_value<uint32_t>(IPV4_to_ptype, "255.255.255.255"), 0xFFFFFFFFu);
    EXPECT_EQ(to_text(IPV4_to_string, uint32_t{0xC0A80102}), "192.168.1.2");
    EXPECT_EQ(IPV4_to_ptype("192.168.1.2", nullptr, nullptr), 0);
}

TEST_F(Ipv4, ReadsALeadingZeroAsOctalAndIgnoresWhatABlankSetsApart)
{
    EXPECT_EQ(to_value<uint32_t>(IPV4_to_ptype, "010.0.0.1"), 0x08000001u);
    EXPECT_EQ(to_value<uint32_t>(IPV4_to_ptype, "10.0.0.1 behind"), 0x0A000001u);
}

TEST_F(Ipv4, RefusesShortFormsAndWhatIsNoAddress)
{
    expect_refused<uint32_t>(IPV4_to_ptype, {"",          "1",          "10.1",        "10.1.2",           "167772161",
                                             "10.1.2.",   "256.0.0.1",  "10.0.0.256",  "10.0.0.1x",        "10.0.0.1/8",
                                             "1.2.3.4.5", "0x10.0.0.1", "10.0.0.0x1.", "08.0.0.1",         "10.0.0.-1",
                                             " 10.0.0.1", "10..0.1",    "a.b.c.d",     "4294967306.0.0.1", "::1",
                                             "10.0.0. 1", "+10.0.0.1"});
}

TEST_F(Ipv4, PrintingIsCutToTheBuffer)
{
    expect_cut(IPV4_to_string, uint32_t{0xC0A80164}, "192.168.1.100");
    char buffer[20];
    memset(buffer, '#', sizeof buffer);
    const uint32_t value = 0x0A000001;
    ASSERT_EQ(IPV4_to_string(&value, buffer, 18, nullptr), 0);
    EXPECT_EQ(std::string(buffer, 20), std::string("10.0.0.1\0\0\0\0\0\0\0\0\0\0##", 20));
}

TEST_F(Ipv4Mask, HoldsAddressAndPrefix)
{
    EXPECT_EQ(to_value<ipv4_mask>(IPV4_MASK_to_ptype, "192.168.1.0/24"), (ipv4_mask{0xC0A80100, 24}));
    EXPECT_EQ(to_value<ipv4_mask>(IPV4_MASK_to_ptype, "0.0.0.0/0"), (ipv4_mask{0, 0}));
    EXPECT_EQ(to_value<ipv4_mask>(IPV4_MASK_to_ptype, "255.255.255.255/32"), (ipv4_mask{0xFFFFFFFF, 32}));
    // Decimal throughout, unlike an address alone.
    EXPECT_EQ(to_value<ipv4_mask>(IPV4_MASK_to_ptype, "010.08.0.1/08"), (ipv4_mask{0x0A080001, 8}));
    EXPECT_EQ(IPV4_MASK_to_ptype("10.0.0.0/8", nullptr, nullptr), 0);
}

TEST_F(Ipv4Mask, PrintsItsOctetsInReverseOrder)
{
    const auto network = to_value<ipv4_mask>(IPV4_MASK_to_ptype, "192.168.1.0/24");
    ASSERT_TRUE(network);
    EXPECT_EQ(to_text(IPV4_MASK_to_string, *network), "0.1.168.192/24");
    const auto host = to_value<ipv4_mask>(IPV4_MASK_to_ptype, "10.1.2.3/8");
    ASSERT_TRUE(host);
    EXPECT_EQ(to_text(IPV4_MASK_to_string, *host), "3.2.1.10/8");
    EXPECT_EQ(to_text(IPV4_MASK_to_string, ipv4_mask{0xFFFFFFFF, UINT32_MAX}), "255.255.255.255/4294967295");
    expect_cut(IPV4_MASK_to_string, ipv4_mask{0xC0A80100, 24}, "0.1.168.192/24");
}

TEST_F(Ipv4Mask, KeepsTheLeniencyOfScanning)
{
    for (const char *text : {"10.0.0.0/8", " 10. 0.0.0/ 8", "+10.0.0.0/+8", "10.0.0.0/8 behind", "10.0.0.0/8x",
                             "10.0.0.0/8/9", "-4294967286.0.0.0/8", "10.0.0.0/-4294967288"})
        EXPECT_EQ(to_value<ipv4_mask>(IPV4_MASK_to_ptype, text), (ipv4_mask{0x0A000000, 8})) << text;
}

TEST_F(Ipv4Mask, RefusesFieldsThatAreTooLargeAlsoBeyond32Bits)
{
    expect_refused<ipv4_mask>(
        IPV4_MASK_to_ptype,
        {"10.0.0.0/33", "256.0.0.0/8", "10.256.0.0/8", "10.0.256.0/8", "10.0.0.256/8", "-1.0.0.0/8", "10.0.0.0/-1",
         "4294967296.0.0.0/8", "4294967306.0.0.0/8", "10.0.0.0/4294967296", "10.0.0.0/4294967304",
         "10.0.0.0/18446744073709551624", "-4294967296.0.0.0/8", "99999999999999999999999.0.0.0/8"});
}

TEST_F(Ipv4Mask, RefusesWhatHasNoFiveFields)
{
    expect_refused<ipv4_mask>(IPV4_MASK_to_ptype,
                              {"", "10", "10.0.0.0", "10.0.0.0/", "10.0.0/8", "10.0.0.0 /8", "10.0.0.0/x", "10,0,0,0/8",
                               "10/8", "10.0.0.0.0/8", "0x10.0.0.0/8", ".0.0.0/8", "10.0.0.0:8"});
}

TEST_F(TxpowerType, IsZeroForPercentsAndOneForAnyOtherText)
{
    for (const char *text : {"percents", "PERCENTS", "PerCents"})
        EXPECT_EQ(to_value<uint32_t>(TXPOWER_TYPE_to_ptype, text), 0u) << text;
    for (const char *text : {"", "percent", "percents ", " percents", "dbm", "0", "1"})
        EXPECT_EQ(to_value<uint32_t>(TXPOWER_TYPE_to_ptype, text), 1u) << text;
    EXPECT_EQ(TXPOWER_TYPE_to_ptype("dbm", nullptr, nullptr), 0);
}

TEST_F(TxpowerType, PrintsOnlyPercents)
{
    EXPECT_EQ(to_text(TXPOWER_TYPE_to_string, uint32_t{0}), "percents");
    expect_cut(TXPOWER_TYPE_to_string, uint32_t{0}, "percents");
    for (const uint32_t value : {1u, 2u, 0xFFFFFFFFu}) {
        const printed output = print(TXPOWER_TYPE_to_string, value);
        EXPECT_EQ(output.result, -1);
        EXPECT_TRUE(output.written);
        EXPECT_EQ(output.text, "");
        EXPECT_EQ(print(TXPOWER_TYPE_to_string, value, 1).result, -1);
        EXPECT_EQ(print(TXPOWER_TYPE_to_string, value, 0).result, -1);
        EXPECT_EQ(TXPOWER_TYPE_to_string(&value, nullptr, 64, nullptr), -1);
    }
}

}  // namespace
