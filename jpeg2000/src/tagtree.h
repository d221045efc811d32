// Tag trees (ITU-T T.800, B.10.2): quad trees over a grid of leaves in which a node holds the minimum of its
// children. Leaves stand row by row.
#ifndef JPEG2000_TAGTREE_H
#define JPEG2000_TAGTREE_H

#include "fixedbuffer.h"
#include "geometry.h"

namespace jpeg2000 {

class TagTree {
public:
    struct Node {
        Node* parent = nullptr; // null at the root
        int value = 0x7fffffff;
        int low = 0;
        int known = 0;
    };

    unsigned width = 0, height = 0; // of the leaf grid
    FixedBuffer<Node> nodes;        // level by level, leaves first
    unsigned nOfNodes = 0;

    void Init(const RectSize& size);

protected:
    // The nodes from a leaf to the root: a grid of 2^32 by 2^32 leaves has 33 levels.
    class Path {
    public:
        explicit Path(Node* leaf)
        {
            for (Node* node = leaf; node; node = node->parent) m_nodes[m_length++] = node;
        }
        Node* next() { return m_length == 0 ? nullptr : m_nodes[--m_length]; } // from the root down

    private:
        Node* m_nodes[40];
        int m_length = 0;
    };
};

class TagTreeEncoder : public TagTree {
public:
    TagTreeEncoder() = default;
    TagTreeEncoder(const TagTreeEncoder& other) : TagTree() { *this = other; }
    TagTreeEncoder& operator=(const TagTreeEncoder& other); // the copy's links point into the copy

    void SetValue(unsigned leaf, int value);

    // Tells the reader whether the leaf's value is below the threshold, as far as it does not know; returns
    // the answer.
    template <class BitOut>
    bool Encode(unsigned leaf, int threshold, BitOut& out)
    {
        Path path(&nodes[leaf]);
        int low = 0;
        while (Node* node = path.next()) {
            low = Max(low, node->low);
            while (low < threshold) {
                if (low >= node->value) {
                    if (!node->known) out.Write1();
                    node->known = 1;
                    break;
                }
                out.Write0();
                low++;
            }
            node->low = low;
        }
        return nodes[leaf].low < threshold;
    }
};

class TagTreeDecoder : public TagTree {
public:
    // Reads until it is known whether the leaf's value is below the threshold; returns the answer.
    template <class BitIn>
    bool Decode(BitIn& in, unsigned leaf, int threshold)
    {
        Path path(&nodes[leaf]);
        int low = 0;
        while (Node* node = path.next()) {
            low = Max(low, node->low);
            while (low < threshold && low < node->value) {
                if (in.Read())
                    node->value = low;
                else
                    low++;
            }
            node->low = low;
        }
        return nodes[leaf].value < threshold;
    }
};

} // namespace jpeg2000

#endif
