#include "phone/springboard/texts.hpp"

namespace phone {

namespace {

constexpr Texts kTexts[] {
    { "en", "Swipe up to unlock", "Press home to unlock", "Enter Passcode", "Cancel", "Delete",
        "The Night Train", "Gökçe & the Harbour Band",
        { { "Messages", "Nora Lindqvist", "Table for six at eight? I booked the one by the window.",
              "2m ago" },
            { "Calendar", "Ferry to the islands", "Today 18:40, pier 3. Bring the picnic blanket.",
                "9:12" } } },
    { "tr", "Açmak için yukarı kaydırın", "Açmak için ana ekrana basın", "Parolayı Girin", "Vazgeç", "Sil",
        "Gece Treni", "Gökçe ve Liman Orkestrası",
        { { "Mesajlar", "Nora Lindqvist", "Akşam sekizde altı kişilik masa? Pencere kenarını ayırttım.",
              "2 dk önce" },
            { "Takvim", "Adalara vapur", "Bugün 18:40, 3. iskele. Piknik örtüsünü unutma.", "09:12" } } },
    { "he", "החליקו למעלה כדי לפתוח", "לחצו על לחצן הבית כדי לפתוח", "הזינו קוד גישה", "ביטול", "מחיקה",
        "רכבת הלילה", "גאיה ולהקת הנמל",
        { { "הודעות", "נורה לינדקוויסט", "שולחן לשישה בשמונה? הזמנתי את זה שליד החלון.", "לפני 2 דק׳" },
            { "לוח שנה", "מעבורת לאיים", "היום 18:40, רציף 3. להביא שמיכה לפיקניק.", "9:12" } } },
    { "de", "Zum Entsperren nach oben streichen", "Zum Entsperren Home drücken", "Code eingeben", "Abbrechen",
        "Löschen", "Der Nachtzug", "Gökçe und die Hafenkapelle",
        { { "Nachrichten", "Nora Lindqvist", "Tisch für sechs um acht? Ich habe den am Fenster reserviert.",
              "vor 2 Min." },
            { "Kalender", "Fähre zu den Inseln", "Heute 18:40, Steg 3. Picknickdecke mitnehmen.",
                "09:12" } } },
    { "ja", "上にスワイプしてロック解除", "ホームボタンを押してロック解除", "パスコードを入力", "キャンセル",
        "削除", "夜の列車", "ギョクチェと港の楽団",
        { { "メッセージ", "ノーラ・リンドクヴィスト", "8時に6名で予約しました。窓際の席です。", "2分前" },
            { "カレンダー", "島へのフェリー", "今日 18:40、3番桟橋。敷物を忘れずに。", "9:12" } } },
    { "zh", "向上轻扫以解锁", "按下主屏幕按钮以解锁", "输入密码", "取消", "删除", "夜行列车",
        "戈克切与港口乐队",
        { { "信息", "诺拉·林德奎斯特", "八点六个人的桌子？我订了靠窗的那张。", "2分钟前" },
            { "日历", "去岛上的渡轮", "今天18:40，3号码头。别忘了野餐垫。", "09:12" } } },
};

}

Texts const& textsFor(std::string_view language)
{
    for (std::string_view part = language; !part.empty();) {
        for (Texts const& row : kTexts)
            if (part == row.language)
                return row;
        auto const dash = part.rfind('-');
        part = dash == part.npos ? std::string_view {} : part.substr(0, dash);
    }
    return kTexts[0];
}

}
