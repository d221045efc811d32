#include "qkresult.h"

namespace {

struct ResultRow {
    const char* name;
    const char* text;
};

#define QK_RESULT_ROW(name, text) {#name, text},
const ResultRow resultRows[] = {QK_RESULTS(QK_RESULT_ROW)};
#undef QK_RESULT_ROW

const ResultRow unknownRow = {"UNKNOWN", "unknown result"};

const ResultRow& resultRow(int result)
{
    return result >= 0 && result < qkNumResults ? resultRows[result] : unknownRow;
}

} // namespace

const char* qkResultName(int result)
{
    return resultRow(result).name;
}

const char* qkResultString(int result)
{
    return resultRow(result).text;
}
