// The program frame: flags, messages, the resource database with its
// arguments and conversions, the loop window link, prompts and menus. The cases
// that start the database want a process of their own, as ctest gives them.
#include "date.h"
#include "date_text.h"
#include "feed_stdin.h"
#include "files.h"
#include "mqueue.h"
#include "queue_peer.h"
#include "rad_input.h"
#include "res_table.h"
#include "run_program.h"
#include "var_tool.h"
#include "zyr.h"
#include "zyrresrc.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <regex>
#include <set>

namespace {

using testing::internal::CaptureStderr;
using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStderr;
using testing::internal::GetCapturedStdout;

// What is given and what is to come of it.
using Pairs = std::vector<std::pair<const char*, const char*>>;

constexpr res_type keys[] = {
    RES_help,       RES_batch,      RES_message, RES_file_path,   RES_inputg,       RES_in_file,
    RES_out_file,   RES_file_param, RES_hour,    RES_plot_domain, RES_stat_prior,   RES_plot_type,
    RES_plot_scale, RES_plot_param, RES_draw,    RES_label,       RES_con_interval, RES_color_label,
    RES_device,     RES_icon,       RES_null};
constexpr res_type positions[] = {RES_filenames, RES_null};

// Starts the database as "prog ARGS" would, with no defaults file but `search`.
void start(std::string args, const std::string& search = "/nowhere") {
    args.insert(0, "/usr/bin/prog ");
    std::vector<char*> argv; // the words of `args`
    for (char* word = args.data(); word != nullptr;) {
        argv.push_back(strsep(&word, " "));
    }
    setenv("zyrdefault", search.c_str(), 1);
    RES_init(static_cast<int>(argv.size()), argv.data(), keys, positions);
    RES_setCL(0, nullptr); // the texts do not outlive this call
}

// What `result` says of the database that the arguments of each row start.
void each_start(const Pairs& rows, const std::function<std::string()>& result) {
    for (const auto& [args, expected] : rows) {
        const std::string got = in_child([&result, text = args] {
            start(text);
            return result();
        });
        EXPECT_EQ(got, expected) << args;
    }
}

std::string value(const char* name) {
    const char* text = RES_get(name);
    return text != nullptr ? text : "(absent)";
}

unsigned level_mask() {
    unsigned mask = 0;
    for (unsigned bit = 1; bit != 0; bit <<= 1) {
        mask |= MESS_check(bit) != 0 ? bit : 0;
    }
    return mask;
}

std::string plot_switches() {
    std::string text;
    for (int i = 0; i < 13; ++i) {
        text += (i > 0 ? "," : "") + std::to_string(FLAG_getplot(i));
    }
    return text;
}

} // namespace

TEST(Batch, MeetsMessageInAnyOrder) {
    each_start(
        {
            {"-me mess -ba", "1 4095"   },
            {"-ba -me mess", "1 4095"   },
            {"-ba=off",      "1 255"    },
            {"-ic",          "0 1048575"}
    },
        [] { return std::to_string(FLAG_batch()) + " " + std::to_string(level_mask()); });
}

TEST(Flag, KeepsToItsTables) {
    EXPECT_EQ(FLAG_get(29), missing);
    for (int n : {-1, 30}) {
        EXPECT_EQ(FLAG_set(n, 5), -1);
        EXPECT_EQ(FLAG_get(n), 0);
    }
    EXPECT_EQ(FLAG_setl(3, 1L << 40), 0);
    EXPECT_EQ(FLAG_getl(3), 1L << 40);
    FLAG_setplot(1, 0);
    EXPECT_EQ(plot_switches(), "5,0,1,1,1,1,1,1,1,1,1,1,15");
}

TEST(Mess, LevelsFollowTheText) {
    struct Row {
        const char* text;
        unsigned mask;
    };
    for (const Row& row : std::initializer_list<Row>{
             {"WARN",               0xFF      },
             {"debug",              0xFFFFFFFF},
             {"debugb",             0x3FFFFFFF},
             {"+debuga",            0x100FFFFF},
             {"-warn",              0xFFF3F   },
             {"+what",              0xFFFFF   },
             {"page,line=0,nopage", 0xFFFFF   }
    }) {
        MESS_set(0, 0xFFFFF);
        MESS_set_str(row.text);
        EXPECT_EQ(level_mask(), row.mask) << row.text;
    }
    MESS_set(0, 0xFFFFF);
    MESS_set(9, 0xF0);
    MESS_set(11, 0x100000);
    MESS_set(20, 1); // ignored: there were settings before
    MESS_set(5, 1);
    EXPECT_EQ(level_mask(), 0x1FFF0FU);
}

TEST(Mess, LogsAndScreenTakeTheSameText) {
    const TempDir dir;
    const std::string log = dir.path() + "/new/log";
    MESS_set_log_tools({.open = FILE_open, .close = FILE_close, .stamp = DATE_get_current_str});
    for (const auto& [kind, in_log] : Pairs{
             {"+fi=", "old a 7\n"       },
             {"-fi=", "a 7\n"           },
             {"dfi=", "old a 7\n"       },
             {"fi=",  "old a 7\n"       },
             {"@fi=", "old .*Z -- a 7\n"}
    }) {
        dir.write("new/log", "old ");
        MESS_set_str((kind + log).c_str());
        CaptureStdout();
        const int shown = MESS_print(mess_print, "%s %d\n", "a", 7);
        EXPECT_EQ(GetCapturedStdout(), shown == 1 ? "a 7\n" : "");
        EXPECT_EQ(shown, *kind == 'f' ? 0 : 1) << kind;
        MESS_set_str(("+fi=" + dir.path() + "/other").c_str()); // closes this log
        EXPECT_TRUE(std::regex_match(read_text(log), std::regex(in_log))) << kind;
    }
    // One warning, then silence, on the screen that the log was to replace.
    CaptureStderr();
    MESS_set_str(("fi=" + dir.path()).c_str());
    MESS_print(mess_error, "lost\n");
    const std::string errors = GetCapturedStderr();
    EXPECT_EQ(errors, "MESS_set_str: Unable to open log file: " + dir.path() + "\n");
    CaptureStderr();
    MESS_set_str(("dfi=" + dir.path()).c_str());
    MESS_print(mess_error, "one\n");
    MESS_print(mess_error, "two\n");
    const std::string each = GetCapturedStderr();
    EXPECT_EQ(each.substr(each.find('\n')), "\none\ntwo\n");
}

TEST(Mess, PagesAfterALineTooMany) {
    feed_stdin("\n\n");
    MESS_set_str("page");
    const auto shows_hold = [](int newlines, int times) {
        CaptureStdout();
        for (int i = 0; i < times; ++i) {
            MESS_print(mess_print, newlines == 1 ? "%s\n" : "%s\n\n", "x\nx\nx\n");
        }
        return GetCapturedStdout().find("Press return") != std::string::npos;
    };
    EXPECT_FALSE(shows_hold(1, 22)); // lines count as in the format
    EXPECT_TRUE(shows_hold(1, 1));
    EXPECT_FALSE(shows_hold(2, 11));
    EXPECT_TRUE(shows_hold(2, 1));
    FLAG_set_batch(1);
    EXPECT_FALSE(shows_hold(2, 30));
    MESS_set_page(1);
}

TEST(Arguments, ReachTheirRows) {
    each_start(
        {
            {"-inp nids",         "input: nids\n"                    },
            {"-p cf",             "plot_domain: cf\n"                },
            {"-pd -90,30",        "plot_domain: -90,30\n"            },
            {"-pd -de",           "plot_domain:\ndevice:\n"          },
            {"-ic file",          "icon:\nfilename: file\n"          },
            {"-ba a -- - -3 b,c", "batch:\nfilename: a\n-\n-3\nb,c\n"},
            {"-Unknown v",        "Unknown: v\n"                     },
            {"--name T f",        "filename: f\n"                    },
            {"-na T",             "name: T\n"                        }
    },
        [] {
            CaptureStdout();
            RES_list();
            const std::string list = GetCapturedStdout();
            return list.substr(list.find('\n') + 1); // after "default"
        });
}

TEST(Arguments, FilesSplitAtNewlinesOthersAtCommas) {
    start("a,b c -la x,y,z -icon -" + std::string(60, 'q') + "=v");
    EXPECT_EQ(value(std::string(49, 'q').c_str()), "v");
    int count = 0;
    char** items = nullptr;
    ASSERT_EQ(RES_getvals("filename", &count, &items), 2);
    EXPECT_STREQ(items[0], "a,b");
    free_parsed_array(count, items);
    EXPECT_EQ(RES_getvals("label", &count, &items), 3);
    free_parsed_array(count, items);
    EXPECT_EQ(RES_getvals("icon", &count, &items), 0);
    EXPECT_EQ(RES_getvals("nothing", &count, &items), 0);
}

namespace {

// What a conversion leaves in a place that held 77.
template <class T> T converted(const char* text, DEF_convert cvt) {
    T out = 77;
    RES_conv_data(text, &out, cvt);
    return out;
}

} // namespace

TEST(Conversion, StoresNumbers) {
    const std::vector<int> whole = {
        converted<int>("0x1F", CV_int),        converted<int>("0xFFFFFFFF", CV_int),
        converted<int>("99999999999", CV_int), converted<int>("x8", CV_int),
        converted<int>("OFF", CV_bool),        converted<int>("maybe", CV_bool),
        converted<int>(nullptr, CV_bool),      converted<short>("-2", CV_short),
        converted<short>("99999", CV_short)};
    EXPECT_EQ(whole, (std::vector<int>{31, -1, 2147483647, 77, 0, 77, 1, 77, 32767}));
    EXPECT_EQ(converted<long>("12345678901", CV_long), 12345678901);
    EXPECT_EQ(converted<float>("-2.5e0", CV_float), -2.5F);
    EXPECT_EQ(converted<float>("nan", CV_float) + converted<float>("1e999", CV_float), 2 * 77);
}

TEST(Conversion, StoresTextsAndFlags) {
    char copy[201];
    RES_conv_data(std::string(300, 'x').c_str(), copy, CV_strcpy);
    EXPECT_EQ(std::string(copy), std::string(200, 'x'));
    char* path = nullptr;
    RES_conv_data("a/b", &path, CV_path);
    EXPECT_STREQ(path, "a/b/");
    delete[] path;
    for (const auto& [text, expected] : Pairs{
             {"ps,out.ps", "4out.ps"},
             {"Qx",        "5unset" },
             {"m",         "3unset" },
             {",",         "1unset" }
    }) {
        const char* name = "unset";
        RES_conv_data(text, &name, CV_device);
        EXPECT_EQ(std::to_string(FLAG_get(flag_device)) + name, expected) << text;
    }
    RES_conv_data("LCF", nullptr, CV_plot_type);
    RES_conv_data("what", nullptr, CV_plot_type); // leaves it
    EXPECT_EQ(FLAG_get(flag_plot_type), 16);
    EXPECT_EQ(RES_conv_data("5", nullptr, CV_int), 0);
}

TEST(Conversion, ReadsTheHour) {
    // Year month day hour minute, "-" if not set.
    for (const auto& [text, fields] : Pairs{
             {"050312",               "- 5 3 12 -"    },
             {"0312",                 "- - 3 12 -"    },
             {"312",                  "- - 3 12 -"    },
             {"1d12:30",              "- - 1 12 30"   },
             {"2d",                   "- - 2 - -"     },
             {"-:15",                 "- - - - -15"   },
             {"12:30",                "- - - 12 30"   },
             {"-106",                 "- - - -106 -"  },
             {"-0:10",                "- - - - -10"   },
             {"#199905031230",        "1999 5 3 12 30"},
             {"",                     "- - - - -"     },
             {"99999999999999999999", "- - - 99999 -" }
    }) {
        EXPECT_EQ(text_of(RES_dec_hour(text)), fields) << text;
    }
}

TEST(Conversion, DrawNamesOrEdits) {
    for (const auto& [text, expected] : Pairs{
             {"Data,map",      "0,0,0,0,0,0,0,1,1,0,0,0,2" },
             {"-text,-data",   "0,0,0,0,0,0,0,0,1,1,1,0,3" },
             {"text",          "6,1,1,1,1,1,1,0,0,0,0,1,13"},
             {"-text_ul,-sum", "5,0,1,1,1,1,1,1,1,1,0,1,14"},
             {"+what,-all",    "6,1,1,1,1,1,1,1,1,1,1,1,17"}
    }) {
        FLAG_setplot(12, 1);
        RES_conv_data(text, nullptr, CV_draw);
        EXPECT_EQ(plot_switches(), expected) << text;
    }
}

// A setting that is asked for by a name that no row has would never arrive.
TEST(List, EveryNameInTheCodeHasARow) {
    std::set<std::string> known = {"name", "default"}; // these have options of their own
    for (const ResRow& row : res_rows) {
        if (row.argument != nullptr) {
            known.insert(row.def);
        }
    }
    std::vector<std::filesystem::path> files = {ZYR_SOURCE_DIR "/zyrrad.cpp"};
    for (const auto& entry : std::filesystem::directory_iterator(ZYR_SOURCE_DIR "/src")) {
        files.push_back(entry.path());
    }
    // What asks by name, and the names of settings that tables and callers pass on.
    const std::regex name(R"re(RES_get\w*\(\s*"(\w+)"|"(color_\w+|[a-z]+_path)")re");
    int found = 0;
    for (const auto& file : files) {
        const std::string text = read_text(file.string());
        for (std::sregex_iterator at(text.begin(), text.end(), name), end; at != end; ++at) {
            const std::string asked = (*at)[1].matched ? (*at)[1] : (*at)[2];
            // The table itself holds names of rows that the program does not list.
            EXPECT_TRUE(file.filename() == "res_table.h" || known.contains(asked))
                << file << ": " << asked;
            ++found;
        }
    }
    EXPECT_GT(found, 50);
}

TEST(List, ReplacesInPlaceAndKeepsOldTexts) {
    RES_new(3, "a", "one", CV_int);
    RES_put("b", nullptr);
    const char* old = RES_get("a");
    RES_put("a", "two");
    EXPECT_STREQ(old, "one"); // addresses handed out stay valid
    RES_append(3, "a", "three", CV_strings);
    RES_append(3, "b", "four", CV_strings);
    EXPECT_EQ(value("a") + value("b") + value("A"), "two\nthreefour(absent)");
    int moves = 0; // thousands of file names are no thousands of copies
    for (int i = 0; i < 3000; ++i) {
        old = RES_get("a");
        RES_append(3, "a", "name", CV_strings);
        moves += RES_get("a") != old ? 1 : 0;
    }
    EXPECT_LT(moves, 20);
    EXPECT_EQ(value("a").size(), 9U + 3000 * 5);
}

TEST(Input, ChoosesTypeConventionAndModel) {
    const TempDir dir;
    dir.write("name_conv", "rad_cvt CVT\nrad_dat DAT\nrad_raw RAW\nnids NID\nlev2 LEV\nrrwds RRW\n"
                           "rcm_cvt RCM\nrcm_dat SIT\n");
    each_start(
        {
            {"-ic",                    "31 - - mdr CVT"      },
            {"-if=nids",               "33 - - mdr NID"      },
            {"-if=xnids_zyr",          "33 - 3 mdr xnids_zyr"},
            {"-if=rawfile",            "31 0 - mdr RAW"      },
            {"-inp=LEV2Z",             "38 - - mdr LEV"      },
            {"-inp=lev2 -if=cdfs",     "37 - 12 mdr cdfs"    },
            {"-inp=what,SITE -if=cvt", "32 - - mdr CVT"      },
            {"-inp=rcmsite",           "35 - - mdr SIT"      },
            {"-inp=rcm -if=conv",      "31 - - rcm CVT"      },
            {"-inp=what -if=conv",     "31 1 - mdr CVT"      }
    },
        [&dir] { // flags 14, 16 and 17, model, convention
            RES_put("file_path", dir.path().c_str());
            RAD_cvt_in_file();
            std::string text;
            for (int flag : {flag_input, flag_raw_conv, flag_format}) {
                text += (is_set(FLAG_get(flag)) ? std::to_string(FLAG_get(flag)) : "-") + " ";
            }
            std::array<char, file_name_size> name{};
            const Date any = date_of(2001, 1, 1); // the convention is all literal
            FILE_set_date(&any, name.data());
            return text + VAR_get_model_str() + " " + name.data();
        });
}

namespace {

class Window : public testing::Test {
protected:
    void SetUp() override {
        if (!QueuePeer(QueuePeer::silent, {}, log).works()) {
            GTEST_SKIP() << "no message queues here";
        }
    }
    TempDir dir;
    std::string log = dir.path() + "/log";
};

} // namespace

TEST_F(Window, SharesItsSettings) {
    QueuePeer peer(QueuePeer::answers,
                   {
                       {"label",    "from window\n" },
                       {"draw",     "!no\n"         },
                       {"device",   "ps\n"          },
                       {"out_file", "gif=|touch x\n"}
    },
                   log);
    CaptureStderr();
    const std::string file = dir.write("own", "*.label mine\n*.draw data\n*.plot_scale 2\n");
    start("-de d -icon -unknown v", file + ":#" + std::to_string(peer.number()));
    peer.wait();
    EXPECT_EQ(value("help") + value("label") + value("draw") + value("device"),
              "(absent)from windowdatad");
    EXPECT_TRUE(GetCapturedStderr().starts_with(
        "ZYRloop window: Command refused: out_file gif=|touch x\n"));
    EXPECT_EQ(value("out_file"), "(absent)");
    EXPECT_EQ(read_text(log), "hello\nset res plot_scale 2\nset res draw data\n"
                              "set res device d\nset res icon \nquit\n");
}

TEST_F(Window, ThatIsNotThereOrRefusesIsPassedOver) {
    CaptureStderr();
    EXPECT_EQ(in_child([] {
                  start("-ic -fp .", "#4711:#x");
                  return value("label");
              }),
              "(absent)");
    EXPECT_EQ(GetCapturedStderr(), "ZYRloop window: 4711 not running or no message queue exists\n"
                                   "ZYRloop window: x not running or no message queue exists\n");
    const QueuePeer peer(QueuePeer::refuses, {}, log);
    const std::string number = std::to_string(peer.number());
    CaptureStderr();
    start("-la x -fp .", "#" + number);
    EXPECT_EQ(GetCapturedStderr(), "ZYRloop window: " + number + " unable to connect\n");
    // A command longer than a message is refused, not cut.
    CaptureStderr();
    EXPECT_EQ(MQ_put(MQ_open(peer.number()), 5, "%s", std::string(120, 'x').c_str()), -1);
    EXPECT_NE(GetCapturedStderr(), "");
}

TEST_F(Window, ThatGivesNoAnswerEndsTheProgram) {
    for (const auto manner : {QueuePeer::silent, QueuePeer::drips}) {
        const QueuePeer peer(manner, {}, log);
        MQ_set_timeout(1);
        EXPECT_EXIT(start("-ic", "#" + std::to_string(peer.number())), testing::ExitedWithCode(7),
                    "^Queue not responding!!\n$");
    }
}

TEST_F(Window, ThatFloodsOrIsAnothersIsGivenUp) {
    {
        const QueuePeer peer(QueuePeer::floods, {}, log);
        CaptureStderr();
        start("-fp . -la mine", "#" + std::to_string(peer.number()));
        EXPECT_EQ(GetCapturedStderr(), "ZYRloop window: answer ends after 10000 lines\n");
        EXPECT_EQ(value("label"), "mine");
    }
    const std::string other_log = dir.path() + "/other";
    const QueuePeer peer(QueuePeer::answers,
                         {
                             {"label", "theirs\n"}
    },
                         other_log);
    if (!peer.give_away()) {
        GTEST_SKIP() << "only root gives a queue away";
    }
    const std::string number = std::to_string(peer.number());
    CaptureStderr();
    start("-fp . -ic", "#" + number);
    EXPECT_EQ(GetCapturedStderr(), "MQ_open: The queue is another user's: " + number +
                                       "\nZYRloop window: " + number + " unable to connect\n");
    EXPECT_EQ(read_text(other_log), "");
}

TEST(Prompt, TellsCommandsFromAnswers) {
    CaptureStdout();
    feed_stdin("set label  = a b\n\nSETTING con_base=4\n  two words\n"
               "letters\n-7 x\nx\n2.5e1\nset label new\nword_of_more_than_19_characters\n");
    std::array<char, 81> word{};
    ZYR_prompts("1? ", word.data(), 6);
    EXPECT_STREQ(word.data(), "two");
    EXPECT_EQ(value("label") + value("con_base"), "a b4");
    EXPECT_EQ(ZYR_promptd("2? "), -7);
    EXPECT_EQ(ZYR_promptf("3? "), 25.0F);
    ZYR_promptl("4? ", word.data()); // a menu only lists
    EXPECT_STREQ(word.data(), "word_of_more_than_1");
    EXPECT_EQ(GetCapturedStdout(), "1? 1? 1? 1? 2? 2? 3? 3? 4? Set resources\n"
                                   "label: a b\ncon_base: 4\n\n4? ");
    feed_stdin("a_rather_long_one\nset " + std::string(50, 'n') + " v\n" + std::string(200, 'z') +
               "\n");
    EXPECT_STREQ(ZYR_prompts("", word.data(), 6), "a_rat");
    ZYR_prompts("", word.data(), 81);
    EXPECT_EQ(std::string(word.data()), std::string(80, 'z'));
    EXPECT_EQ(value(std::string(49, 'n').c_str()), "(absent)");
    EXPECT_EQ(ZYR_set_command("no command"), 0);
    EXPECT_EQ(ZYR_sleep(0), -1);
}

namespace {

std::vector<MENU_item> make_menu(int visible) {
    static const char* names[] = {"A", "B", "C", "D", "E", "F", "G", "H", "I", "J", "K", "L", "M"};
    std::vector<MENU_item> menu = {
        {"Return", "back", 50, {1, 1}},
        {"Hidden", "hid",  51, {0, 1}}
    };
    for (int i = 0; i < visible; ++i) {
        menu.push_back({
            i == 1 ? "----" : names[i], names[i], 100 + i, {1, 1}
        });
    }
    menu.push_back({nullptr, nullptr, 0, {}});
    return menu;
}

} // namespace

TEST(Menu, PrintsTwoColumnsOfManyItems) {
    CaptureStdout();
    MENU_print("T", make_menu(13).data(), 0, 3);
    const std::string text = GetCapturedStdout();
    EXPECT_EQ(count_text(text, "\n"), 10); // title, seven rows of items, one below, a blank
    EXPECT_LT(text.find("  1: A"), text.find("  8: H")) << text;
    EXPECT_LT(text.find("  8: H"), text.find("  9: I")) << text;
    EXPECT_EQ(count_text(text, "  0: Return                          -1: Exit program "), 1);
}

TEST(Menu, ReadsAChoice) {
    struct Row {
        const char* typed;
        int flag;
        const char* expected; // index and string
    };
    for (const Row& row : std::initializer_list<Row>{
             {"?\nc",        3, "102 C"            },
             {"-1",          2, "-9999 -1"         },
             {"0",           0, "-9999 0"          },
             {"-1",          1, "-1 -1"            },
             {"3",           3, "102 C"            },
             {"MAIN",        2, "0 MAIN"           },
             {"return",      0, "50 back"          },
             {"hid",         3, "-9999 hid"        },
             {"5",           3, "-9999 5"          },
             {"99999999999", 3, "-9999 99999999999"}
    }) {
        std::array<char, 81> string{};
        feed_stdin(std::string(row.typed) + "\n");
        CaptureStdout();
        const int index = MENU_process("T", make_menu(4).data(), 0, "? ", string.data(), row.flag);
        EXPECT_EQ(std::to_string(index) + " " + string.data(), row.expected);
        const std::string text = GetCapturedStdout();
        EXPECT_EQ(count_text(text, "T\n  1: A  "), 1);
        EXPECT_EQ(count_text(text, "? back,A,B,C,D\n\n? "), *row.typed == '?');
    }
}
