#include "rules.h"

namespace ipodnames
{
// In the order of the characters that have several readings; the first rule that fits wins.
const char16_t* const kHanWords =
    uR"(
    乐 } [队团章曲器手坛谱乐] > ·yue·; [音声民配器奏弦响滚] { 乐 > ·yue·; 爵士 { 乐 > ·yue·;
    重重 > ·chong·chong·; 重 } [庆来新逢复生返回温阳叠山] > ·chong·; [双九] { 重 > ·chong·;
    长 } [大辈老官子孙] > ·zhang·; [成生增滋校家队船班市会酋] { 长 > ·zhang·; 长 > ·chang·;
    [银外内排] { 行 > ·hang·; 行 } [家业列诗] > ·hang·; 单 } 于 > ·chan·; 干 } [坤隆] > ·qian·;
    了 } [解断结却望] > ·liao·; 了 } 不起 > ·liao·; [未明] { 了 > ·liao·; [睡午懒] { 觉 > ·jiao·;
    不停 { 地 > ·de·; 拼命 { 地 > ·de·; 快乐 { 地 > ·de·; 用力 { 地 > ·de·;
    $how = [轻慢静深偷悄默渐狠紧远傻乖痴淡缓暗牢苦细狂久高早好]; $how $how { 地 } [:Han:] > ·de·; 地 > ·di·;
    目 { 的 > ·di·; 的 } 士 > ·di·; [成首古京帝魔] { 都 > ·du·; 都 } [市城] > ·du·;
    还 } [给珠魂愿原债乡我] > ·huan·; [偿归生往] { 还 > ·huan·; [自浒蛇雄外前列] { 传 > ·zhuan·;
    [空协] { 调 > ·tiao·; 调 } [皮情色酒味整] > ·tiao·; 弹 } [琴唱奏吉钢] > ·tan·; 朝朝 > ·zhao·zhao·;
    朝 } [思夕露] > ·zhao·; 今 { 朝 > ·zhao·; 投 { 降 > ·xiang·; 降 } [龙伏] > ·xiang·; [西青宝] { 藏 > ·zang·;
    藏 } [族歌文] > ·zang·; [可厌] { 恶 > ·wu·; [主配] { 角 > ·jue·; 角 } 色 > ·jue·; [淹沉出埋] { 没 > ·mo·;
    没 } 落 > ·mo·; 着 } [迷火急魔凉] > ·zhao·; 睡 { 着 > ·zhao·; [执沉穿] { 着 > ·zhuo·; 着 } [落陆] > ·zhuo·;
    似 } 的 > ·shi·; 似 > ·si·; 湖 { 泊 > ·po·; 泊 > ·bo·; 勒 > ·le·; 雪 { 茄 > ·jia·; 茄 > ·qie·;
    薄 } 饼 > ·bao·; 薄 > ·bo·; 参差 > ·cen·ci·; [人海] { 参 > ·shen·; [效频心] { 率 > ·l\uFDD2·; 率 > ·shuai·;
    朴 } [树素实] > ·pu·; 尉 } 迟 > ·yu·; 万 } 俟 > ·mo·; 澹 } 台 > ·tan·; 模 } 样 > ·mu·; 星 { 宿 > ·xiu·;
    脉脉 > ·mo·mo·; 弄 } 堂 > ·long·; 婀 { 娜 > ·nuo·; 厦 } 门 > ·xia·; 牛 { 仔 > ·zai·; 便 } 宜 > ·pian·;
    番 } 禺 > ·pan·; 大 } 夫 > ·dai·; 秘 } 鲁 > ·bi·; 倔 { 强 > ·jiang·; 给 } 予 > ·ji·; 关 { 卡 > ·qia·;
    否极 > ·pi·ji·; 露 } 脸 > ·lou·; 蚌 } 埠 > ·beng·; 阿房 > ·e·pang·; 阿 } 弥 > ·e·; 咳 } 嗽 > ·ke·;
    沈 } 阳 > ·shen·; 玮 { 柏 > ·bo·; 柏 } [林拉] > ·bo·; 靓 } 颖 > ·liang·; 隽 } 逸 > ·jun·;
)";

const char16_t* const kWordsLikeNames =
    uR"(
    单 } [身车行恋眼程曲人纯调薄飞数元挑] > ·dan·; 曾 } [经几是爱] > ·ceng·; 仇 } [恨人敌家] > ·chou·;
    解 } [药放脱开释语忧决散码封渴谜构] > ·jie·; 区 } [别间域] > ·qu·; 查 } [询看找理] > ·cha·;
    乐 } [园土观趣意天] > ·le·;
)";

const char16_t* const kShortNames = u"$rest = [:Han:] [:Han:]? [^[:Han:]];";
const char16_t* const kAllNames = u"$rest = [:Any:];";

const char16_t* const kSurnames =
    uR"(
    $begin = [^[:Han:]·];
    $begin { 卜 } $rest > ·bu·; $begin { 曾 } $rest > ·zeng·; $begin { 查 } $rest > ·zha·; $begin { 翟 } $rest > ·zhai·;
    $begin { 解 } $rest > ·xie·; $begin { 乐 } $rest > ·yue·; $begin { 靓 } $rest > ·liang·; $begin { 缪 } $rest > ·miao·;
    $begin { 牟 } $rest > ·mu·; $begin { 粘 } $rest > ·nian·; $begin { 区 } $rest > ·ou·; $begin { 逄 } $rest > ·pang·;
    $begin { 朴 } $rest > ·piao·; $begin { 仇 } $rest > ·qiu·; $begin { 单 } $rest > ·shan·; $begin { 覃 } $rest > ·qin·;
    $begin { 隗 } $rest > ·wei·; $begin { 莘 } $rest > ·xin·; $begin { 尉 } $rest > ·yu·;
)";

const char16_t* const kSurnamesLikeWords =
    uR"(
    $begin { 秘 > ·bi·; $begin { 种 > ·chong·; $begin { 重 > ·chong·; $begin { 刀 > ·diao·; $begin { 盖 > ·ge·;
    $begin { 繁 > ·po·; $begin { 召 > ·shao·; $begin { 折 > ·she·; $begin { 员 > ·yun·;
)";

const char16_t* const kHanCharacter = u"::Han-Latin; ::NFC; [üǖǘǚǜ] > \uFDD2; ::Latin-ASCII;";

// A final consonant and the following initial assimilate; sounds that compounds insert are not covered.
const char16_t* const kHangul =
    uR"(
    ::[:Hangul:] NFD;
    $k = [ᆨᆩᆪᆰᆿ]; $n = [ᆫᆬᆭ]; $t = [ᆮᆺᆻᆽᆾᇀᇂ]; $l = [ᆯᆲᆳᆴᆶ]; $m = [ᆷᆱ]; $p = [ᆸᆹᆵᇁ]; $nasal = [ᄂᄆ];
    ᆮ ᄋ } ᅵ > j; ᇀ ᄋ } ᅵ > ch; ᆴ ᄋ } ᅵ > lch;
    ᆨ ᄋ > g; ᆩ ᄋ > kk; ᆪ ᄋ > ks; ᆫ ᄋ > n; ᆬ ᄋ > nj; ᆭ ᄋ > n; ᆮ ᄋ > d; ᆯ ᄋ > r; ᆰ ᄋ > lg; ᆱ ᄋ > lm; ᆲ ᄋ > lb;
    ᆳ ᄋ > ls; ᆴ ᄋ > lt; ᆵ ᄋ > lp; ᆶ ᄋ > r; ᆷ ᄋ > m; ᆸ ᄋ > b; ᆹ ᄋ > ps; ᆺ ᄋ > s; ᆻ ᄋ > ss; ᆽ ᄋ > j; ᆾ ᄋ > ch;
    ᆿ ᄋ > k; ᇀ ᄋ > t; ᇁ ᄋ > p; ᇂ ᄋ > ;
    ᆭ } [ᄀᄃᄌᄉ] > n | ᇂ; ᆶ } [ᄀᄃᄌᄉ] > l | ᇂ; ᇂ ᄀ > k; ᇂ ᄃ > t; ᇂ ᄌ > ch; ᇂ ᄉ > s;
    [$n $l] ᄅ > ll; $l ᄂ > ll; $k ᄅ > ngn; $t ᄅ > nn; $p ᄅ > mn; $m ᄅ > mn; ᆼ ᄅ > ngn;
    $k } $nasal > ng; $t } $nasal > n; $p } $nasal > m;
    $k > k; $n > n; $t > t; $l > l; $m > m; $p > p; ᆼ > ng;
    ᄀ > g; ᄁ > kk; ᄂ > n; ᄃ > d; ᄄ > tt; ᄅ > r; ᄆ > m; ᄇ > b; ᄈ > pp; ᄉ > s; ᄊ > ss; ᄋ > ; ᄌ > j; ᄍ > jj;
    ᄎ > ch; ᄏ > k; ᄐ > t; ᄑ > p; ᄒ > h; ᅡ > a; ᅢ > ae; ᅣ > ya; ᅤ > yae; ᅥ > eo; ᅦ > e; ᅧ > yeo; ᅨ > ye; ᅩ > o;
    ᅪ > wa; ᅫ > wae; ᅬ > oe; ᅭ > yo; ᅮ > u; ᅯ > wo; ᅰ > we; ᅱ > wi; ᅲ > yu; ᅳ > eu; ᅴ > ui; ᅵ > i;
)";

const char16_t* const kKana =
    uR"(
    ぢゃ > ja; ぢゅ > ju; ぢょ > jo; ぢ > ji; づ > zu; ヂャ > ja; ヂュ > ju; ヂョ > jo; ヂ > ji; ヅ > zu;
    ヴァ > va; ヴィ > vi; ヴェ > ve; ヴォ > vo; ヴュ > vyu; ウィ > wi; ウェ > we; ウォ > wo; イェ > ye;
    クァ > kwa; クィ > kwi; クェ > kwe; クォ > kwo; グァ > gwa; ツァ > tsa; ツィ > tsi; ツェ > tse; ツォ > tso;
    トゥ > tu; ドゥ > du; テュ > tyu; デュ > dyu; フュ > fyu; スィ > si; ズィ > zi;
)";
}  // namespace ipodnames
