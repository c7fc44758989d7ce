#ifndef MULTIINSERTIONTREE_H
#define MULTIINSERTIONTREE_H

#include <QtCore/QList>

#include <vector>

#include <deque>

/*!
 * An ordered multi-map that only grows: a red-black tree in which every new
 * key walks down from the root, going right when the node's key is less than
 * the new key (node key on the left of operator<) and left otherwise, and is
 * never merged with an equal key. The tree is then rebalanced by the classic
 * red-black insertion rotations.
 *
 * Hosts depend on the row order that this exact walk and this exact tree
 * shape give, also for comparisons that contradict themselves (a descending
 * key compares less than an equal one both ways; a caller's function may
 * answer anything), and on the sequence of comparisons a caller's function
 * sees. It is kept here rather than taken from a container library, whose
 * multi-insertion may walk differently.
 */
template <typename Key, typename Value>
class MultiInsertionTree
{
public:
    void insert(const Key& key, const Value& value)
    {
        Node* parent = nullptr;
        Node* x = m_root;
        bool left = true;
        while (x) {
            left = !(x->key < key);
            parent = x;
            x = left ? x->left : x->right;
        }
        m_nodes.push_back(Node{key, value, nullptr, nullptr, parent, true});
        Node* node = &m_nodes.back();
        if (!parent)
            m_root = node;
        else if (left)
            parent->left = node;
        else
            parent->right = node;
        rebalance(node);
    }

    int size() const { return int(m_nodes.size()); }

    //! The values in key order (an in-order walk of the tree).
    QList<Value> values() const
    {
        QList<Value> result;
        result.reserve(int(m_nodes.size()));
        std::vector<const Node*> stack;
        const Node* x = m_root;
        while (x || !stack.empty()) {
            while (x) {
                stack.push_back(x);
                x = x->left;
            }
            x = stack.back();
            stack.pop_back();
            result.append(x->value);
            x = x->right;
        }
        return result;
    }

private:
    struct Node
    {
        Key key;
        Value value;
        Node* left;
        Node* right;
        Node* parent;
        bool red;
    };

    using Side = Node* Node::*;

    //! Rotates x down to its `down` side: the child on its `up` side takes its
    //! place. (A left rotation is rotate(x, &Node::left, &Node::right).)
    void rotate(Node* x, Side down, Side up)
    {
        Node* y = x->*up;
        x->*up = y->*down;
        if (y->*down)
            (y->*down)->parent = x;
        y->parent = x->parent;
        if (x == m_root)
            m_root = y;
        else if (x == x->parent->*down)
            x->parent->*down = y;
        else
            x->parent->*up = y;
        y->*down = x;
        x->parent = y;
    }

    void rebalance(Node* x)
    {
        x->red = true;
        while (x != m_root && x->parent->red) {
            Node* grandparent = x->parent->parent;
            // The two cases mirror each other: `near` is the side of the
            // grandparent that holds the parent, `far` the uncle's side.
            const bool parentOnLeft = x->parent == grandparent->left;
            const Side near = parentOnLeft ? &Node::left : &Node::right;
            const Side far = parentOnLeft ? &Node::right : &Node::left;
            Node* uncle = grandparent->*far;
            if (uncle && uncle->red) {
                x->parent->red = false;
                uncle->red = false;
                grandparent->red = true;
                x = grandparent;
            } else {
                if (x == x->parent->*far) {
                    x = x->parent;
                    rotate(x, near, far);
                }
                x->parent->red = false;
                x->parent->parent->red = true;
                rotate(x->parent->parent, far, near);
            }
        }
        m_root->red = false;
    }

    std::deque<Node> m_nodes; // stable addresses as the tree grows
    Node* m_root = nullptr;
};

#endif // MULTIINSERTIONTREE_H
