#include "tagtree.h"

namespace jpeg2000 {

namespace {

unsigned half(unsigned side)
{
    return side / 2 + side % 2;
}

} // namespace

void TagTree::Init(const RectSize& size)
{
    width = size.width;
    height = size.height;
    nOfNodes = width * height;
    for (unsigned w = width, h = height; w * h > 1;) {
        w = half(w);
        h = half(h);
        nOfNodes += w * h;
    }
    nodes.Free();
    nodes.Alloc(nOfNodes);
    Node* level = nodes;
    for (unsigned w = width, h = height; w * h > 1; w = half(w), h = half(h)) {
        Node* parents = level + w * h;
        for (unsigned y = 0; y < h; y++)
            for (unsigned x = 0; x < w; x++) level[y * w + x].parent = &parents[y / 2 * half(w) + x / 2];
        level = parents;
    }
}

TagTreeEncoder& TagTreeEncoder::operator=(const TagTreeEncoder& other)
{
    if (this == &other) return *this;
    if (width != other.width || height != other.height) Init({other.width, other.height});
    for (unsigned i = 0; i < nOfNodes; i++) {
        nodes[i].value = other.nodes[i].value;
        nodes[i].low = other.nodes[i].low;
        nodes[i].known = other.nodes[i].known;
    }
    return *this;
}

void TagTreeEncoder::SetValue(unsigned leaf, int value)
{
    for (Node* node = &nodes[leaf]; node && value < node->value; node = node->parent) node->value = value;
}

} // namespace jpeg2000
