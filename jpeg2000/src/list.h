// A circular doubly linked list whose sentinel is the list itself.
#ifndef JPEG2000_LIST_H
#define JPEG2000_LIST_H

namespace jpeg2000 {

template <class T>
class List {
public:
    struct Node {
        Node *prev, *next;
        T* value;

        Node(Node* before, Node* behind, T* owned) : prev(before), next(behind), value(owned) {}
        Node(const Node&) = delete;
        Node& operator=(const Node&) = delete;
        ~Node() { delete value; }

        T& operator*() const { return *value; }
        T* operator->() const { return value; }
    };

    // Points at a node; at the end, at the sentinel, which holds no value.
    class Iterator {
    public:
        Iterator() = default;
        explicit Iterator(Node* node) : m_node(node) {}

        T& operator*() const { return *m_node->value; }
        T* operator->() const { return m_node->value; }
        Iterator& operator++()
        {
            m_node = m_node->next;
            return *this;
        }
        Iterator& operator--()
        {
            m_node = m_node->prev;
            return *this;
        }
        bool operator==(const Iterator&) const = default;

    private:
        Node* m_node = nullptr;
    };

    List() = default;
    List(const List&) = delete;
    List& operator=(const List&) = delete;
    ~List() { Clear(); }

    bool IsEmpty() const { return m_sentinel.next == &m_sentinel; }

    // Iterators hand out the elements of a const list too: constness is that of the list's order.
    Iterator begin() const { return Iterator(m_sentinel.next); }
    Iterator end() const { return Iterator(m_sentinel.prev->next); }
    T& Head() const { return *m_sentinel.next->value; }
    T& Tail() const { return *m_sentinel.prev->value; }

    // Appends a default-constructed element.
    T& PushBack()
    {
        Node* node = new Node(m_sentinel.prev, &m_sentinel, new T());
        m_sentinel.prev->next = node;
        m_sentinel.prev = node;
        return *node->value;
    }
    void PopHead() { remove(m_sentinel.next); }
    void PopTail() { remove(m_sentinel.prev); }
    void Clear()
    {
        while (!IsEmpty()) PopHead();
    }

private:
    static void remove(Node* node)
    {
        node->prev->next = node->next;
        node->next->prev = node->prev;
        delete node;
    }

    Node m_sentinel{&m_sentinel, &m_sentinel, nullptr};
};

} // namespace jpeg2000

#endif
