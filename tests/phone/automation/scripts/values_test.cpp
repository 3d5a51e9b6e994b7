// The forms of values: what goes into a message comes out of it again.
#include "tests/phone/automation/scripts/scripts_fixture.hpp"

#include "phone/automation/scripts/value_objects.hpp"
#include "phone/automation/scripts/value_types.hpp"
#include "phone/graphics/image_codec.hpp"
#include "phone/kernel/base64.hpp"
#include "phone/springboard/object_values.hpp"

namespace phone {

class ScriptValues : public ScriptsTest {
protected:
    // There and back.
    static Json through(Json const& value)
    {
        auto const object = objectOfValue(value, "value");
        if (object)
            return objectValue(*object);
        ADD_FAILURE() << object.message();
        return nullptr;
    }
    static std::string refused(char const* value)
    {
        auto const object = objectOfValue(Json::parse(value), "value");
        EXPECT_FALSE(object) << value;
        return object ? "" : object.message();
    }
    // As bytes of a type, there and back.
    static Json throughType(char const* encoding, Json const& value)
    {
        auto const type = valueType(encoding);
        if (!type) {
            ADD_FAILURE() << type.message();
            return nullptr;
        }
        alignas(16) unsigned char bytes[64] {};
        auto const written = writeValue(**type, value, bytes, "value");
        if (!written)
            return written.message();
        return readValue(**type, bytes);
    }
};

TEST_F(ScriptValues, ObjectsComeBackAsTheyWere)
{
    boot(usual());
    for (char const* const text : { "null", "true", "false", "0", "1", "-7", "9007199254740993",
             "18446744073709551615", "1.5", "-0.25", R"("")", R"("Ada Lünd 👩‍🚀")", "[]",
             R"([1,"a",[true,2.5]])", "{}", R"({"a":1,"b":{"c":[]}})", R"({"date":"2026-06-18T09:41:00Z"})",
             R"({"data":"AAEC/w=="})", R"({"color":[0.0,0.5,1.0,0.25]})" }) {
        Json const value = Json::parse(text);
        EXPECT_EQ(through(value), value) << text;
        // A truth value stays one, and a number a number.
        EXPECT_EQ(through(value).type_name(), std::string(value.type_name())) << text;
    }
    EXPECT_EQ(through(Json::parse(R"([null,1])")), Json::parse(R"([null,1])"));
}

TEST_F(ScriptValues, PicturesKeepPixelsScaleAndMode)
{
    boot(usual());
    auto bitmap = graphics::Bitmap::withPixels(6, 4, 1);
    bitmap.row(1)[2] = 0xffff0000;
    bitmap.markDirty();
    auto const png = graphics::encodePng(bitmap);
    std::string const data = base64(png.data(), png.size());

    Json const back = through(Json::object({ { "image", data }, { "scale", 2 }, { "renderingMode", 2 } }));

    EXPECT_EQ(back["size"], Json::parse("[3.0,2.0]"));
    EXPECT_EQ(back["scale"], 2);
    EXPECT_EQ(back["renderingMode"], 2);
    auto const pixels = bytesOfBase64(back["image"].get<std::string>());
    ASSERT_TRUE(pixels);
    EXPECT_EQ(graphics::decodeUpright(*pixels).row(1)[2], 0xffff0000u);
}

TEST_F(ScriptValues, AnyOtherObjectHasClassDescriptionAndHandle)
{
    boot(usual());
    Json const strip = send("strip", "self");
    EXPECT_EQ(strip["class"], "CVLView");
    EXPECT_TRUE(strip["description"].is_string());
    // It serves as a target, as an argument, and as it came.
    Json const handle = Json::object({ { "handle", strip["handle"] } });
    EXPECT_EQ(send(handle, "self"), strip);
    EXPECT_EQ(send(strip["handle"], "self"), strip);
    EXPECT_EQ(through(handle), strip);
    EXPECT_EQ(through(strip), strip);
    EXPECT_EQ(through(Json::array({ handle })), Json::array({ strip }));
}

TEST_F(ScriptValues, AHandleKeepsItsObjectAlive)
{
    boot(usual());
    Json made;
    {
        AutoreleasePool const pool;
        made = send("UIView", "new");
    }
    EXPECT_EQ(send(made["handle"], "class")["class"], "UIView");
    // The handle alone holds it.
    EXPECT_EQ(send(made["handle"], "retainCount"), 1);
}

TEST_F(ScriptValues, DamagedFormsAreRefused)
{
    boot(usual());
    EXPECT_EQ(refused(R"({"date":"June"})"), "value.date is no ISO 8601 date");
    EXPECT_EQ(refused(R"({"date":1})"), "value.date is no ISO 8601 date");
    EXPECT_EQ(refused(R"({"data":"*"})"), "value.data is no base64");
    EXPECT_EQ(refused(R"({"data":[]})"), "value.data is no base64");
    EXPECT_EQ(refused(R"({"color":[1,1,1]})"), "value.color is no array of four numbers from 0 to 1");
    EXPECT_EQ(refused(R"({"color":[2,1,1,1]})"), "value.color is no array of four numbers from 0 to 1");
    EXPECT_EQ(refused(R"({"image":"AAEC"})"), "value.image is no picture");
    EXPECT_EQ(refused(R"({"image":7})"), "value.image is no base64");
    EXPECT_EQ(
        refused(R"({"image":"","scale":0})"), "value.scale is no number of pixels per point from 1 to 4");
    EXPECT_EQ(refused(R"({"image":"","renderingMode":3})"), "value.renderingMode is none of 0, 1 and 2");
    EXPECT_EQ(refused(R"({"handle":"object-0"})"), "value.handle names no object");
    EXPECT_EQ(refused(R"({"handle":null})"), "value.handle names no object");
    EXPECT_NE(refused(R"({"rect":[1,2,3]})").find("of 4 numbers"), std::string::npos);
    EXPECT_EQ(refused(R"([{"a":[{"date":0}]}])"), "value[0].a[0].date is no ISO 8601 date");
    std::string deep;
    for (int i = 0; i < 100; ++i)
        deep += "[";
    deep += std::string(100, ']');
    EXPECT_NE(refused(deep.c_str()).find("nested too deeply"), std::string::npos);
}

TEST_F(ScriptValues, EveryTypeOfAMethodTravels)
{
    boot(usual());
    struct Case {
        char const* encoding;
        char const* value;
    };
    for (auto const& [encoding, text] :
        std::initializer_list<Case> { { "B", "true" }, { "B", "false" }, { "c", "-5" }, { "c", "true" },
            { "C", "200" }, { "s", "-32768" }, { "S", "65535" }, { "i", "-2147483648" },
            { "I", "4294967295" }, { "q", "-9223372036854775808" }, { "Q", "18446744073709551615" },
            { "l", "7" }, { "L", "7" }, { "d", "1.25" }, { "f", "0.5" }, { "*", R"("text")" },
            { "*", "null" }, { ":", R"("setFrame:")" }, { ":", "null" }, { "@", "null" },
            { "@\"NSString\"", R"("a")" }, { "r*", R"("a")" }, { "^v", "null" }, { "@?", "null" },
            { "#", "null" }, { "{CGRect={CGPoint=dd}{CGSize=dd}}", R"({"rect":[1.0,2.0,3.5,4.0]})" },
            { "{CGSize=dd}", R"({"size":[3.0,4.0]})" }, { "{CGPoint=dd}", R"({"point":[3.0,4.0]})" },
            { "{UIEdgeInsets=dddd}", R"({"insets":[1.0,2.0,3.0,4.0]})" },
            { "{CGAffineTransform=dddddd}", R"({"transform":[1.0,0.0,0.0,1.0,5.0,6.0]})" },
            { "{_NSRange=QQ}", "[3,4]" },
            { "{Mixed=cid{CGPoint=dd}}", R"([5,-6,7.0,{"point":[8.0,9.0]}])" } }) {
        Json const value = Json::parse(text);
        EXPECT_EQ(throughType(encoding, value), value) << encoding << " " << text;
    }
    EXPECT_EQ(throughType("#", "UIView")["class"], "UIView");
    EXPECT_EQ(throughType("q", 3.0), 3);
}

TEST_F(ScriptValues, AWrongKindNamesTheOneThatIsTaken)
{
    boot(usual());
    struct Case {
        char const* encoding;
        char const* value;
        char const* says;
    };
    for (auto const& [encoding, text, says] :
        std::initializer_list<Case> { { "B", "2", "value takes true or false, not 2" },
            { "B", R"("YES")", "value takes true or false, not \"YES\"" },
            { "c", "200", "value takes a whole number from -128 to 127, not 200" },
            { "C", "-1", "value takes a whole number from 0 to 255, not -1" },
            { "i", "2147483648",
                "value takes a whole number from -2147483648 to 2147483647, not 2147483648" },
            { "q", "1.5",
                "value takes a whole number from -9223372036854775808 to 9223372036854775807, not 1.5" },
            { "q", "1e300",
                "value takes a whole number from -9223372036854775808 to 9223372036854775807, not 1e+300" },
            { "Q", "-1", "value takes a whole number from 0 to 18446744073709551615, not -1" },
            { "q", "true",
                "value takes a whole number from -9223372036854775808 to 9223372036854775807, not true" },
            { "d", R"("1")", "value takes a number, not \"1\"" }, { "*", "1", "value takes a text, not 1" },
            { ":", "1", "value takes a selector as text, not 1" },
            { "#", R"("NoSuchClass")", "value takes the name of a class, not \"NoSuchClass\"" },
            { "^v", "1", "value takes null, not 1" },
            { "{CGSize=dd}", R"({"point":[1,2]})",
                "value takes {\"size\": […]} of 2 numbers, not {\"point\":[1,2]}" },
            { "{CGSize=dd}", R"({"size":[1]})",
                "value takes {\"size\": […]} of 2 numbers, not {\"size\":[1]}" },
            { "{CGSize=dd}", R"({"size":[1,"2"]})",
                "value takes {\"size\": […]} of 2 numbers, not {\"size\":[1,\"2\"]}" },
            { "{_NSRange=QQ}", "[1]", "value takes an array of 2 values, not [1]" } })
        EXPECT_EQ(throughType(encoding, Json::parse(text)), says) << encoding << " " << text;
}

TEST_F(ScriptValues, EncodingsAreReadWithTheirTrimmings)
{
    auto const types = methodTypes("v40@0:8r^{Some=[4c](U=id)^?}16@?24B32");
    ASSERT_TRUE(types) << types.message();
    ASSERT_EQ(types->arguments.size(), 3u);
    EXPECT_EQ(types->arguments[0]->code, '^');
    EXPECT_EQ(types->arguments[1]->code, '?');
    EXPECT_EQ(types->arguments[2]->code, 'B');
    for (char const* const bad :
        { "", "v", "v@", "v@:[4c]", "v@:(U=id)", "v@:b3", "v@:{Open=dd", "v@:{Empty=}", "v@:{NoFields}",
            "v@:v", "v@:%", "{A={A={A={A={A={A={A={A={A={A={A={A={A={A={A={A={A={A=d}}}}}}}}}}}}}}}}}}@:" })
        EXPECT_FALSE(methodTypes(bad)) << bad;
}

}
