// The mapping language as typed element trees.
//
// QXDAOElement::elementWithXML takes one definition element of a document and returns the tree of
// elements that it describes, or an error record for a violated rule, usually the first. The classes:
//
//   QXDAOElement
//     QXDAOText               a piece of SQL text, list references expanded
//     QXDAOForeach            <foreach>: text repeated for each entry of a collection
//     QXDAOKeyValueFormatter  <format>: prefix, pairs and join of key-value pairs
//     QXDAOSqlBlock           <sql>: named, reusable SQL text
//     QXDAOConst              <const>: a named constant
//     QXDAOMap                <map>: columns of a result row → properties of a class
//     QXDAOCryptProperty      <crypt>: a property that is stored encrypted
//     QXDAOPack               <pack>: several properties in one column
//     QXDAOContainerElement   elements with children:
//       QXDAOMethod           <select>, <update>, <insert>, <delete>, <upgrade>
//       QXDAOMethodStep       <step>
//       QXDAOTry              <try>
//       QXDAOExcept           <except>
//       QXDAOCondition        <if>, <when>, <otherwise>
//       QXDAOChoose           <choose>
//       QXDAOTrim             <trim>, <where>, <set>
//
// Construction: a new element is blank. Its initWith… operation fills it from a document node and is
// called once. It is not virtual, because the class of the element is known when it is built. It always returns; a
// violated rule is recorded in the element and propagated to the root. Elements copy what they keep, so a finished tree
// may outlive its document. Building and destroying recurse as deep as the document is nested; a caller with its own
// parser must limit that depth, as the loader does.
//
// Ownership: a parent owns its children. Plain pointers (parentMethod, exceptElement, tryElement) own
// nothing and point to elements of the same tree.
//
// Threads: a tree is built on the thread of the caller; any number of trees may be built at the same
// time. A finished tree is only read and may be read on any thread, except for the slots marked as the
// engine's, which the engine synchronises itself. Setters are plain stores without a lock.
//
// Properties: a getter returns a reference or a view that is valid until the property is set or the
// element is destroyed. A setter replaces the value, checks nothing and takes what the getter returns.
// An absent string or list (nullopt) is different from an empty one; absent is what has not been set.
//
// Memory: a failed allocation throws std::bad_alloc if the library is built with exceptions, and otherwise ends the
// program.
#pragma once

#include "korvex/Keywords.h"
#include "korvex/MappingSequence.h"
#include "korvex/QXDAOChoose.h"
#include "korvex/QXDAOCondition.h"
#include "korvex/QXDAOConst.h"
#include "korvex/QXDAOContainerElement.h"
#include "korvex/QXDAOCryptProperty.h"
#include "korvex/QXDAOElement.h"
#include "korvex/QXDAOEngineValue.h"
#include "korvex/QXDAOError.h"
#include "korvex/QXDAOExcept.h"
#include "korvex/QXDAOForeach.h"
#include "korvex/QXDAOKeyValueFormatter.h"
#include "korvex/QXDAOMap.h"
#include "korvex/QXDAOMethod.h"
#include "korvex/QXDAOMethodStep.h"
#include "korvex/QXDAOPack.h"
#include "korvex/QXDAOPackReader.h"
#include "korvex/QXDAORule.h"
#include "korvex/QXDAOSqlBlock.h"
#include "korvex/QXDAOText.h"
#include "korvex/QXDAOTrim.h"
#include "korvex/QXDAOTry.h"
