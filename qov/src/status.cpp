#include "qovcore.h"

const char* qovGetStatusString(QovStatus status)
{
    struct Text {
        QovStatus status;
        const char* text;
    };
    static const Text texts[] = {
        {qovStsNoErr, "No error, the operation is done"},
        {qovStsPartial, "Done for the part that could be done"},
        {qovStsMarker, "A marker or the end of the coded data came before the bits that were needed"},
        {qovStsNotSupportedCpu, "The processor can't run this level, the best possible one is active"},
        {qovStsOneThread, "The library runs on one thread"},
        {qovStsUnknownCpu, "The processor is unknown"},
        {qovStsUnknownCacheSize, "The size of the cache is unknown"},
        {qovStsErr, "Error"},
        {qovStsNotSupported, "The operation is not supported"},
        {qovStsNoMemory, "Not enough memory"},
        {qovStsBadArg, "An argument is outside its range"},
        {qovStsSize, "Wrong size or length"},
        {qovStsStep, "A step is shorter than a row"},
        {qovStsRange, "A value has no code in the table or is too large"},
        {qovStsNullPtr, "Null pointer"},
        {qovStsContext, "A spec or state is not initialised or is of another kind"},
        {qovStsDstFull, "The output buffer is full"},
        {qovStsTable, "Not a Huffman table"},
        {qovStsData, "Damaged coded data"},
        {qovStsDamagedBlock, "Damaged code-block"},
    };
    for (const Text& t : texts)
        if (t.status == status) return t.text;
    return status < 0 ? "Unknown error" : "Unknown warning";
}
