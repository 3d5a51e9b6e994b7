// The starter set's pictures, taken into the program as the files that the art program has made.
#include "phone/springboard/starter_pictures.hpp"

#define EMBED(name, path)                                                                                    \
    asm(".section .rodata\n.balign 16\n"                                                                     \
        ".globl " #name "\n.hidden " #name "\n" #name ":\n.incbin \"" path "\"\n"                            \
        ".globl " #name "_end\n.hidden " #name "_end\n" #name "_end:\n.byte 0\n.previous\n");                \
    extern "C" std::uint8_t const name[];                                                                    \
    extern "C" std::uint8_t const name##_end[];

EMBED(phone_portrait1, PHONE_ART_FOLDER "/avatars/portrait1.png")
EMBED(phone_portrait2, PHONE_ART_FOLDER "/avatars/portrait2.png")
EMBED(phone_portrait3, PHONE_ART_FOLDER "/avatars/portrait3.png")
EMBED(phone_portrait4, PHONE_ART_FOLDER "/avatars/portrait4.png")
EMBED(phone_portrait5, PHONE_ART_FOLDER "/avatars/portrait5.png")
EMBED(phone_portrait6, PHONE_ART_FOLDER "/avatars/portrait6.png")
EMBED(phone_portrait7, PHONE_ART_FOLDER "/avatars/portrait7.png")
EMBED(phone_portrait8, PHONE_ART_FOLDER "/avatars/portrait8.png")
EMBED(phone_portrait9, PHONE_ART_FOLDER "/avatars/portrait9.png")
EMBED(phone_portrait10, PHONE_ART_FOLDER "/avatars/portrait10.jpg")
EMBED(phone_cake, PHONE_ART_FOLDER "/happybd.png")
EMBED(phone_banner, PHONE_ART_FOLDER "/contactsbar3.png")

namespace phone {

Bytes starterPortrait(int number)
{
    switch (number) {
    case 1: return { phone_portrait1, phone_portrait1_end };
    case 2: return { phone_portrait2, phone_portrait2_end };
    case 3: return { phone_portrait3, phone_portrait3_end };
    case 4: return { phone_portrait4, phone_portrait4_end };
    case 5: return { phone_portrait5, phone_portrait5_end };
    case 6: return { phone_portrait6, phone_portrait6_end };
    case 7: return { phone_portrait7, phone_portrait7_end };
    case 8: return { phone_portrait8, phone_portrait8_end };
    case 9: return { phone_portrait9, phone_portrait9_end };
    case 10: return { phone_portrait10, phone_portrait10_end };
    default: return {};
    }
}

Bytes birthdayPicture() { return { phone_cake, phone_cake_end }; }

Bytes emptyListPicture() { return { phone_banner, phone_banner_end }; }

}
