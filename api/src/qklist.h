// qkList<T>: the harness's doubly linked list. A sentinel node that holds a default T stands at the end, so
// end() is a real position and an iterator stays valid until its own node is erased.
#ifndef QK_LIST_H
#define QK_LIST_H

template <class T>
class qkList {
    struct Node {
        Node* next = nullptr;
        Node* prev = nullptr;
        T value{};
    };

public:
    class iterator {
    public:
        iterator() = default;
        T& operator*() const { return m_node->value; }
        T* operator->() const { return &m_node->value; }
        iterator& operator++()
        {
            m_node = m_node->next;
            return *this;
        }
        iterator& operator--()
        {
            m_node = m_node->prev;
            return *this;
        }
        bool operator==(const iterator& other) const { return m_node == other.m_node; }
        bool operator!=(const iterator& other) const { return m_node != other.m_node; }

    private:
        friend class qkList;
        explicit iterator(Node* node) : m_node(node) {}
        Node* m_node = nullptr;
    };

    qkList() : m_head(new Node), m_end(m_head) {}
    virtual ~qkList()
    {
        erase(begin(), end());
        delete m_end;
    }
    qkList(const qkList&) = delete;
    qkList& operator=(const qkList&) = delete;

    iterator begin() const { return iterator(m_head); }
    iterator end() const { return iterator(m_end); }
    bool empty() const { return m_head == m_end; }
    int count() const
    {
        int n = 0;
        for (iterator i = begin(); i != end(); ++i) n++;
        return n;
    }

    // Puts a copy of `value` before `where` and returns its position.
    iterator insert(iterator where, const T& value)
    {
        Node* node = new Node{nullptr, nullptr, value};
        link(node, where.m_node);
        return iterator(node);
    }
    iterator append(const T& value) { return insert(end(), value); }

    // Removes one node and returns the position behind it. The sentinel can't be removed.
    iterator erase(iterator where)
    {
        if (where == end()) return where;
        Node* next = where.m_node->next;
        unlink(where.m_node);
        delete where.m_node;
        return iterator(next);
    }
    iterator erase(iterator first, iterator last)
    {
        while (first != last) first = erase(first);
        return last;
    }

    void swap(qkList& other)
    {
        Node* head = m_head;
        Node* tail = m_end;
        m_head = other.m_head;
        m_end = other.m_end;
        other.m_head = head;
        other.m_end = tail;
    }

    // Moves the node at `from` of `other` (which may be this list) before `where`, without copying its value.
    void splice(iterator where, qkList& other, iterator from)
    {
        if (where == from) return;
        other.unlink(from.m_node);
        link(from.m_node, where.m_node);
    }

    // Merges `other`, sorted as this list is, into this one and empties it. Stable: of equal values, those of
    // this list come first.
    void merge(qkList& other, bool (*less)(T&, T&))
    {
        for (iterator i = begin(); i != end() && !other.empty();) {
            if (less(*other.begin(), *i))
                splice(i, other, other.begin());
            else
                ++i;
        }
        while (!other.empty()) splice(end(), other, other.begin());
    }

private:
    void link(Node* node, Node* before)
    {
        node->next = before;
        node->prev = before->prev;
        if (node->prev)
            node->prev->next = node;
        else
            m_head = node;
        before->prev = node;
    }
    void unlink(Node* node)
    {
        if (node->prev)
            node->prev->next = node->next;
        else
            m_head = node->next;
        node->next->prev = node->prev;
    }

    Node* m_head;
    Node* m_end;
};

#endif
