#include "viewer/paste_road.h"

#include "imaging/clipboard.h"
#include "platform/run_aside.h"

namespace quillane {

void PastePicture(EngineInstance& LEAD1, UiLoop& loop)
{
    const ClipboardContent content = TakeClipboard();
    LoadedImage pasted;
    RunAside(loop, [&] { pasted.bitmap = PictureFromClipboard(content); });
    pasted.bitmap.SetExact(false);
    pasted.facts = LEAD1.Info();
    LEAD1.Adopt(std::move(pasted));
}

} // namespace quillane
