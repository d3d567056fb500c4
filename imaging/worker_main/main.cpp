// quillane-codec: decodes pictures for the program in a process that can do nothing else.
#include "imaging/worker_main/codecs/shipped_codecs.h"
#include <cstring>

int main(int argc, char** argv)
{
    using namespace quillane;
    if (argc > 1 && std::strcmp(argv[1], worker::kClipArgument) == 0) {
        return worker::Serve(worker::kShippedClips);
    }
    return worker::Serve(worker::kShippedCodecs);
}
