class Node : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Node)
    DECLARE_ZO_FIELD(int, number)
    REGISTER_ZO_END
};
class Part : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Part)
    DECLARE_ZO_FIELD(ZoString, name)
    REGISTER_ZO_END
};
