#include "request/comTools.h"

#include <iterator>

namespace horalink {

namespace {

using platform::TextView;

constexpr std::size_t fieldWidth = 25;

struct AnswerText {
    TextView text;
    std::int16_t code;
};

// In matching order: the last text that matches wins ("LNK_STN", "LNK_STN_PS").
constexpr AnswerText answerTexts[] = {
    {u"DIGIT ERROR", 0},
    {u"DATA ERROR", 1},
    {u"CODE NOT ALLOWED", 2},
    {u"CODE NOT USED", 3},
    {u"DATA NOT FOUND", 4},
    {u"WAIT, BUSY NOW", 5},
    {u"ASSIGNED ALREADY", 6},
    {u"HARD WARE ERROR", 7},
    {u"WD ERROR", 8},
    {u"USE CM", 9},
    {u"TRK NOT ASSIGNED", 10},
    {u"ASSIGNED TO", 11},
    {u"MEMORY FULL", 12},
    {u"DATA NOT SET", 13},
    {u"END", 14},
    {u"SEE CM", 15},
    {u"OK", 100},
    {u"NONE", 101},
    {u"WRONG", 102},
    {u"MEMORY CLEAR?", 103},
    {u"ERROR", 104},
    {u"INITIAL?", 105},
    {u"COMMAND=", 106},
    {u"CODE NOTALLOWED", 2},
    {u"LNK_TIMEOUT", 60},
    {u"LNK_USERCANCEL", 61},
    {u"LNK_LACK INPUT", 62},
    {u"LNK_PORT TROUBLES", 63},
    {u"LNK_SYSERROR", 64},
    {u"LNK_CMD RERR", 65},
    {u"LNK_CMD WERR", 66},
    {u"LNK_CHECKSUMERROR", 67},
    {u"LNK_INVALID FILENAME", 68},
    {u"LNK_INVALID PROCNUM", 69},
    {u"LNK_INVALID AREANUM", 70},
    {u"LNK_INVALID FILEFORMAT", 71},
    {u"LNK_WRITE ERROR", 72},
    {u"LNK_MEM OVERFLOW", 73},
    {u"LNK_DISK_WRITE_ERROR", 74},
    {u"LNK_INVALID_SEQUENCE", 75},
    {u"LNK_BACKUP_NG", 76},
    {u"LNK_NO_IPPBX", 77},
    {u"LNK_OK", 80},
    {u"LNK_NONE", 81},
    {u"LNK_NO DUMY NUM", 82},
    {u"LNK_STN", 83},
    {u"LNK_PKG", 84},
    {u"LNK_STN_STATION", 85},
    {u"LNK_STN_ZOLAN", 86},
    {u"LNK_STN_VIRTUAL", 87},
    {u"LNK_STN_PS", 88},
    {u"LNK_STN_ISDN", 89},
    {u"LNK_STN_MODEM", 90},
    {u"LNK_STN_DATA", 91},
    {u"LNK_STN_OTHERS", 92},
    {u"LNK_STN_NOT ASSIGNED", 93},
    {u"LNK_STN_ZOLANIP", 94},
};
static_assert(std::size(answerTexts) == 57);

}  // namespace

std::int16_t LookupAnswerText(TextView answer) {
    if (answer.size() > fieldWidth) answer.remove_prefix(answer.size() - fieldWidth);
    std::int16_t code = -1;
    for (const AnswerText& known : answerTexts)
        if (answer.starts_with(known.text)) code = known.code;
    return code;
}

}  // namespace horalink
