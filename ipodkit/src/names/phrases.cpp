#include "names/phrases.h"

#include <algorithm>
#include <iterator>
#include <vector>

namespace ipodkit
{
namespace
{
// Words first, by the character that has several readings. A word that reads as its characters do alone is here when
// a shorter one inside it does not, or when it begins like a surname.
constexpr Phrase kPhrases[] = {
    {u"乐队", "yue dui"},
    {u"乐团", "yue tuan"},
    {u"乐章", "yue zhang"},
    {u"乐曲", "yue qu"},
    {u"乐器", "yue qi"},
    {u"乐手", "yue shou"},
    {u"乐坛", "yue tan"},
    {u"乐谱", "yue pu"},
    {u"音乐", "yin yue"},
    {u"声乐", "sheng yue"},
    {u"民乐", "min yue"},
    {u"配乐", "pei yue"},
    {u"器乐", "qi yue"},
    {u"奏乐", "zou yue"},
    {u"交响乐", "jiao xiang yue"},
    {u"摇滚乐", "yao gun yue"},
    {u"爵士乐", "jue shi yue"},
    {u"管弦乐", "guan xian yue"},
    {u"爱乐乐团", "ai yue yue tuan"},
    {u"快乐", "kuai le"},
    {u"欢乐", "huan le"},
    {u"娱乐", "yu le"},
    {u"极乐", "ji le"},
    {u"可乐", "ke le"},
    {u"乐园", "le yuan"},
    {u"乐土", "le tu"},
    {u"乐观", "le guan"},
    {u"乐趣", "le qu"},
    {u"乐意", "le yi"},
    {u"乐天", "le tian"},

    {u"重庆", "chong qing"},
    {u"重来", "chong lai"},
    {u"重新", "chong xin"},
    {u"重逢", "chong feng"},
    {u"重复", "chong fu"},
    {u"重生", "chong sheng"},
    {u"重返", "chong fan"},
    {u"重回", "chong hui"},
    {u"重温", "chong wen"},
    {u"重阳", "chong yang"},
    {u"重叠", "chong die"},
    {u"双重", "shuang chong"},
    {u"九重", "jiu chong"},
    {u"重重", "chong chong"},
    {u"重山", "chong shan"},

    // Long by itself, to grow in words.
    {u"长", "chang"},
    {u"长大", "zhang da"},
    {u"长辈", "zhang bei"},
    {u"长老", "zhang lao"},
    {u"长官", "zhang guan"},
    {u"长子", "zhang zi"},
    {u"长孙", "zhang sun"},
    {u"成长", "cheng zhang"},
    {u"生长", "sheng zhang"},
    {u"增长", "zeng zhang"},
    {u"滋长", "zi zhang"},
    {u"校长", "xiao zhang"},
    {u"家长", "jia zhang"},
    {u"队长", "dui zhang"},
    {u"船长", "chuan zhang"},
    {u"班长", "ban zhang"},
    {u"市长", "shi zhang"},
    {u"会长", "hui zhang"},
    {u"酋长", "qiu zhang"},
    {u"长生", "chang sheng"},

    {u"银行", "yin hang"},
    {u"行家", "hang jia"},
    {u"行业", "hang ye"},
    {u"行列", "hang lie"},
    {u"外行", "wai hang"},
    {u"内行", "nei hang"},
    {u"行诗", "hang shi"},
    {u"排行", "pai hang"},

    {u"单身", "dan shen"},
    {u"单车", "dan che"},
    {u"单行", "dan xing"},
    {u"单恋", "dan lian"},
    {u"单眼皮", "dan yan pi"},
    {u"单程", "dan cheng"},
    {u"单曲", "dan qu"},
    {u"单人", "dan ren"},
    {u"单纯", "dan chun"},
    {u"单调", "dan diao"},
    {u"单薄", "dan bo"},
    {u"单飞", "dan fei"},
    {u"单数", "dan shu"},
    {u"单元", "dan yuan"},
    {u"单挑", "dan tiao"},
    {u"曾经", "ceng jing"},
    {u"曾几", "ceng ji"},
    {u"曾是", "ceng shi"},
    {u"曾爱", "ceng ai"},
    {u"解药", "jie yao"},
    {u"解放", "jie fang"},
    {u"解脱", "jie tuo"},
    {u"解开", "jie kai"},
    {u"解释", "jie shi"},
    {u"解语花", "jie yu hua"},
    {u"解忧", "jie you"},
    {u"解决", "jie jue"},
    {u"解散", "jie san"},
    {u"解码", "jie ma"},
    {u"解封", "jie feng"},
    {u"解渴", "jie ke"},
    {u"解谜", "jie mi"},
    {u"解构", "jie gou"},
    {u"仇恨", "chou hen"},
    {u"仇人", "chou ren"},
    {u"仇敌", "chou di"},
    {u"仇家", "chou jia"},
    {u"区别", "qu bie"},
    {u"区间", "qu jian"},
    {u"区域", "qu yu"},
    {u"查询", "cha xun"},
    {u"查看", "cha kan"},
    {u"查找", "cha zhao"},
    {u"查理", "cha li"},
    {u"朴树", "pu shu"},
    {u"朴素", "pu su"},
    {u"朴实", "pu shi"},
    {u"尉迟", "yu chi"},
    {u"万俟", "mo qi"},
    {u"单于", "chan yu"},
    {u"令狐", "ling hu"},

    {u"了解", "liao jie"},
    {u"了不起", "liao bu qi"},
    {u"了断", "liao duan"},
    {u"了结", "liao jie"},
    {u"了却", "liao que"},
    {u"未了", "wei liao"},
    {u"明了", "ming liao"},

    {u"睡觉", "shui jiao"},
    {u"午觉", "wu jiao"},
    {u"懒觉", "lan jiao"},

    {u"地", "di"},
    {u"不停地", "bu ting de"},
    {u"拼命地", "pin ming de"},
    {u"快乐地", "kuai le de"},
    {u"用力地", "yong li de"},
    {u"目的", "mu di"},
    {u"的士", "di shi"},

    {u"成都", "cheng du"},
    {u"首都", "shou du"},
    {u"都市", "du shi"},
    {u"都城", "du cheng"},
    {u"古都", "gu du"},
    {u"京都", "jing du"},
    {u"帝都", "di du"},
    {u"魔都", "mo du"},

    {u"还给", "huan gei"},
    {u"还珠", "huan zhu"},
    {u"还魂", "huan hun"},
    {u"还愿", "huan yuan"},
    {u"还原", "huan yuan"},
    {u"还债", "huan zhai"},
    {u"还乡", "huan xiang"},
    {u"还我", "huan wo"},
    {u"偿还", "chang huan"},
    {u"归还", "gui huan"},
    {u"生还", "sheng huan"},
    {u"往还", "wang huan"},

    {u"空调", "kong tiao"},
    {u"调皮", "tiao pi"},
    {u"调情", "tiao qing"},
    {u"调色", "tiao se"},
    {u"调酒", "tiao jiu"},
    {u"调味", "tiao wei"},
    {u"调整", "tiao zheng"},
    {u"协调", "xie tiao"},
    {u"调查", "diao cha"},
    {u"传奇", "chuan qi"},
    {u"自传", "zi zhuan"},
    {u"水浒传", "shui hu zhuan"},
    {u"白蛇传", "bai she zhuan"},
    {u"英雄传", "ying xiong zhuan"},
    {u"外传", "wai zhuan"},
    {u"前传", "qian zhuan"},
    {u"列传", "lie zhuan"},
    {u"弹琴", "tan qin"},
    {u"弹唱", "tan chang"},
    {u"弹奏", "tan zou"},
    {u"弹吉他", "tan ji ta"},
    {u"弹钢琴", "tan gang qin"},

    {u"朝思暮想", "zhao si mu xiang"},
    {u"朝夕", "zhao xi"},
    {u"朝露", "zhao lu"},
    {u"朝朝", "zhao zhao"},
    {u"今朝", "jin zhao"},
    {u"明朝", "ming chao"},
    {u"投降", "tou xiang"},
    {u"降龙", "xiang long"},
    {u"降伏", "xiang fu"},
    {u"西藏", "xi zang"},
    {u"青藏", "qing zang"},
    {u"宝藏", "bao zang"},
    {u"藏族", "zang zu"},
    {u"藏歌", "zang ge"},
    {u"可恶", "ke wu"},
    {u"厌恶", "yan wu"},
    {u"主角", "zhu jue"},
    {u"配角", "pei jue"},
    {u"角色", "jue se"},
    {u"淹没", "yan mo"},
    {u"沉没", "chen mo"},
    {u"出没", "chu mo"},
    {u"埋没", "mai mo"},
    {u"没落", "mo luo"},
    {u"模样", "mu yang"},
    {u"着迷", "zhao mi"},
    {u"着火", "zhao huo"},
    {u"着急", "zhao ji"},
    {u"着魔", "zhao mo"},
    {u"着凉", "zhao liang"},
    {u"睡着", "shui zhao"},
    {u"执着", "zhi zhuo"},
    {u"沉着", "chen zhuo"},
    {u"着落", "zhuo luo"},
    {u"着陆", "zhuo lu"},
    {u"穿着", "chuan zhuo"},
    {u"星宿", "xing xiu"},
    {u"脉脉", "mo mo"},
    {u"弄堂", "long tang"},
    {u"婀娜", "e nuo"},
    {u"厦门", "xia men"},
    {u"牛仔", "niu zai"},
    {u"便宜", "pian yi"},
    {u"番禺", "pan yu"},
    {u"大夫", "dai fu"},
    {u"秘鲁", "bi lu"},
    {u"倔强", "jue jiang"},
    {u"勉强", "mian qiang"},
    {u"泊", "bo"},
    {u"湖泊", "hu po"},
    {u"似", "si"},
    {u"似的", "shi de"},
    {u"勒", "le"},
    {u"茄", "qie"},
    {u"雪茄", "xue jia"},
    {u"薄", "bo"},
    {u"薄饼", "bao bing"},
    {u"参差", "cen ci"},
    {u"人参", "ren shen"},
    {u"海参", "hai shen"},
    {u"给予", "ji yu"},
    {u"关卡", "guan qia"},
    {u"咀嚼", "ju jue"},
    {u"否极泰来", "pi ji tai lai"},
    {u"露脸", "lou lian"},
    {u"效率", "xiao lV"},
    {u"频率", "pin lV"},
    {u"心率", "xin lV"},
    {u"率", "shuai"},
    {u"蚌埠", "beng bu"},
    {u"东莞", "dong guan"},
    {u"阿房宫", "e pang gong"},
    {u"阿弥陀", "e mi tuo"},
    {u"咳嗽", "ke sou"},

    // Given names and stage names.
    {u"玮柏", "wei bo"},
    {u"柏林", "bo lin"},
    {u"柏拉图", "bo la tu"},
    {u"靓颖", "liang ying"},
    {u"隽逸", "jun yi"},
};

struct Surname
{
    char16_t character;
    const char* reading;
};

// Those that begin titles far more often than names are read as words.
constexpr Surname kSurnames[] = {
    {u'朴', "piao"}, {u'缪', "miao"},  {u'翟', "zhai"},  {u'逄', "pang"}, {u'冼', "xian"}, {u'重', "zhong"},
    {u'刀', "dao"},  {u'种', "zhong"}, {u'召', "zhao"},  {u'折', "zhe"},  {u'员', "yuan"}, {u'秘', "mi"},
    {u'繁', "fan"},  {u'盖', "gai"},   {u'靓', "liang"}, {u'筠', "yun"},  {u'峙', "zhi"},  {u'参', "can"},
};

bool Before(const Phrase& one, const Phrase& other)
{
    return one.characters < other.characters;
}

std::vector<Phrase> SortedPhrases()
{
    std::vector<Phrase> phrases(std::begin(kPhrases), std::end(kPhrases));
    std::sort(phrases.begin(), phrases.end(), Before);
    return phrases;
}
}  // namespace

// All that begin with the same character stand together, a longer one after its own beginnings.
const Phrase* PhraseAt(std::u16string_view text)
{
    static const std::vector<Phrase> phrases = SortedPhrases();
    if (text.empty()) return nullptr;
    const Phrase* longest = nullptr;
    auto each = std::lower_bound(phrases.begin(), phrases.end(), Phrase{text.substr(0, 1), nullptr}, Before);
    for (; each != phrases.end() && each->characters[0] == text[0]; ++each)
        if (text.substr(0, each->characters.size()) == each->characters) longest = &*each;
    return longest;
}

const char* SurnameReading(char16_t character)
{
    const auto* const found = std::find_if(std::begin(kSurnames), std::end(kSurnames),
                                           [&](const Surname& each) { return each.character == character; });
    return found == std::end(kSurnames) ? nullptr : found->reading;
}
}  // namespace ipodkit
