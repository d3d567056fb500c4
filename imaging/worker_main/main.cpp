// quillane-codec: decodes pictures for the program in a process that can do nothing else.
#include "imaging/worker_main/codecs/shipped_codecs.h"

int main()
{
    return quillane::worker::Serve(quillane::worker::kShippedCodecs);
}
