// A host program that knows only the umbrella header: it makes an image, paints it with its
// background colour and checks a pixel through the interchange form.

#include <vistrane/vistrane.h>

int main() {
    C_Image::CheckBitmapHeaderType();
    C_Image image;
    if (!image.Create(5, 3, 1, nullptr, 0)) {
        return 1;
    }
    image.SetBackTrueColor(RGB(10, 20, 30));
    image.FillWithPaintColor(PAINT_COLORS_BACK);
    BYTE* block = nullptr;
    if (!image.VirtualSerializeSave(&block)) {
        return 2;
    }
    C_Image copy;
    const int loaded = copy.VirtualSerializeLoad(block);
    C_Helper().SafeVirtualFree(block);
    return loaded && copy.GetPixelColorRef(4, 2) == RGB(10, 20, 30) ? 0 : 3;
}
