/// @file
/// The exceptions that a comparison throws at a difference. An exception holds only copies, so it remains
/// valid after the documents are released.
///
/// Left is the first tree of the comparison, Right the second. A constructor reads its nodes and does not
/// keep them.
#pragma once

#include "InputOutput/RelativeLocation.hpp"
#include "NuvRoot/UniString.hpp"
#include "NuvXMLUtils/Export.hpp"
#include "NuvXMLUtils/Xerces.hpp"

#include <xercesc/dom/DOMAttr.hpp>
#include <xercesc/dom/DOMNode.hpp>

namespace NuvXML
{

/// Base of all differences. It is neither a Nuv::NuvException nor a std::exception, because a difference is
/// not a failure.
class NUVXMLUTILS_API XMLCompareException
{
  public:
    /// One of the two trees. Every value other than 0 is the right one.
    enum Side : int
    {
        Left = 0,
        Right = 1
    };

    /// Both node paths are empty.
    XMLCompareException() = default;

    /// Copies the paths of the two nodes. The path of a null node is empty.
    XMLCompareException(const xercesc_3_0::DOMNode* leftNode, const xercesc_3_0::DOMNode* rightNode);

    XMLCompareException(const XMLCompareException&) = default;
    XMLCompareException& operator=(const XMLCompareException&) = default;
    virtual ~XMLCompareException() = default;

    /// Returns an English report of several lines: both places, and what differs. A character that the local
    /// code page lacks is a `?` in it. The other operations return the full text.
    virtual Nuv::UniString GetText() const;

    /// Returns the names of the nodes from the document element down to the node, without positions.
    IO::RelativeLocation GetNodePath(Side side) const;

    /// Returns the names of GetNodePath joined with `/`, as RelativeLocation::ToURL shows them.
    Nuv::UniString GetNodePathUniString(Side side) const;

  protected:
    /// A value for each side.
    template <class T>
    struct BothSides
    {
        T left{};
        T right{};

        const T& operator[](Side side) const { return side == Left ? left : right; }
    };

  private:
    BothSides<IO::RelativeLocation> path;
};

/// An attribute that one of two elements lacks.
class NUVXMLUTILS_API AttributeMissingException : public XMLCompareException
{
  public:
    /// @param missingOn the side that lacks the attribute
    AttributeMissingException(const xercesc_3_0::DOMNode* leftNode, const xercesc_3_0::DOMNode* rightNode,
                              const xercesc_3_0::DOMAttr* attribute, Side missingOn);

    Nuv::UniString GetText() const override;

    Nuv::UniString GetAttributeName() const;
    Side GetWhereItIsMissing() const;

  private:
    Nuv::UniString attributeName;
    Side whereItIsMissing;
};

/// An attribute of both elements whose values differ.
class NUVXMLUTILS_API AttributesDontMatchException : public XMLCompareException
{
  public:
    AttributesDontMatchException(const xercesc_3_0::DOMNode* leftNode, const xercesc_3_0::DOMNode* rightNode,
                                 const xercesc_3_0::DOMAttr* leftAttribute,
                                 const xercesc_3_0::DOMAttr* rightAttribute);

    Nuv::UniString GetText() const override;

    /// The name of the left attribute.
    Nuv::UniString GetAttributeName() const;
    Nuv::UniString GetAttributeValue(Side side) const;

  private:
    Nuv::UniString attributeName;
    BothSides<Nuv::UniString> value;
};

/// Two elements whose names differ.
class NUVXMLUTILS_API NodeNamesDontMatchException : public XMLCompareException
{
  public:
    NodeNamesDontMatchException(const xercesc_3_0::DOMNode* leftNode, const xercesc_3_0::DOMNode* rightNode);

    Nuv::UniString GetText() const override;
};

/// Two nodes of different types.
class NUVXMLUTILS_API NodeTypesDontMatchException : public XMLCompareException
{
  public:
    NodeTypesDontMatchException(const xercesc_3_0::DOMNode* leftNode, const xercesc_3_0::DOMNode* rightNode);

    Nuv::UniString GetText() const override;

    xercesc_3_0::DOMNode::NodeType GetNodeType(Side side) const;

  private:
    BothSides<int> nodeType;
};

/// Two nodes of one type that the options do not compare, such as two comments.
class NUVXMLUTILS_API NotSupportedNodeTypesException : public XMLCompareException
{
  public:
    NotSupportedNodeTypesException(const xercesc_3_0::DOMNode* leftNode,
                                   const xercesc_3_0::DOMNode* rightNode);

    Nuv::UniString GetText() const override;

    xercesc_3_0::DOMNode::NodeType GetNodeType(Side side) const;

  private:
    BothSides<int> nodeType;
};

/// Two elements of which one has more children.
class NUVXMLUTILS_API OneNodeHasMoreChildrenThanTheOtherException : public XMLCompareException
{
  public:
    /// @param moreOn the side that has more children
    OneNodeHasMoreChildrenThanTheOtherException(const xercesc_3_0::DOMNode* leftNode,
                                                const xercesc_3_0::DOMNode* rightNode, Side moreOn);

    Nuv::UniString GetText() const override;

    Side GetWhichHasMoreChildren() const;

  private:
    Side whichHasMoreChildren;
};

/// An element on one side, a text node on the other.
class NUVXMLUTILS_API OneNodeIsElementOneIsTextException : public NodeTypesDontMatchException
{
  public:
    OneNodeIsElementOneIsTextException(const xercesc_3_0::DOMNode* leftNode,
                                       const xercesc_3_0::DOMNode* rightNode);

    Nuv::UniString GetText() const override;

    /// The value of the text node.
    Nuv::UniString GetTextValue() const;

  private:
    Nuv::UniString textValue;
};

/// Two text nodes whose values differ. The node paths are those of their parents.
class NUVXMLUTILS_API TextNodeValuesDontMatchException : public XMLCompareException
{
  public:
    TextNodeValuesDontMatchException(const xercesc_3_0::DOMNode* leftText,
                                     const xercesc_3_0::DOMNode* rightText);

    Nuv::UniString GetText() const override;

    Nuv::UniString GetTextNodeValue(Side side) const;

  private:
    BothSides<Nuv::UniString> value;
};

/// A document without a document element. Both node paths are empty.
class NUVXMLUTILS_API NoElementsInDocumentException : public XMLCompareException
{
  public:
    /// @param emptySide the side of the document
    explicit NoElementsInDocumentException(Side emptySide);

    Nuv::UniString GetText() const override;

  private:
    Side side;
};

} // namespace NuvXML
