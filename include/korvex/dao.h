// The mapping language as typed element trees.
//
// QXDAOElement::elementWithXML takes one definition element of a document and gives the tree of
// elements that it describes, or an error record that names a violated rule, normally the first:
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
// Construction: a new element is blank; its one initWith… operation fills it from a document node.
// These operations are not virtual: whoever builds an element knows its class. They always finish;
// a violated rule leaves a message that travels up to the error record. Elements copy what they
// keep, so a finished tree outlives the document it was read from. Building and destroying recurse
// as deep as the document is nested: who brings a parser of his own limits that depth, as the loader
// does.
//
// Ownership: a parent owns its children; plain pointers (parentMethod, exceptElement, tryElement)
// own nothing and point inside the same tree.
//
// Threads: a tree is built on the caller's thread, and trees may be built on any number of threads
// at once. A finished tree is only read, except for the slots marked as the engine's, which the
// engine guards itself. Setters are plain stores without a lock.
//
// Destructors are inline on purpose: an engine that is compiled with run-time type information can
// derive from QXDAOEngineValue although the library is compiled without.
//
// Absence: an OptionalString tells an absent string from an empty one; a list or dictionary that
// has not been set is nullopt. Setters replace the old value and check nothing.
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
#include "korvex/QXDAOSqlBlock.h"
#include "korvex/QXDAOText.h"
#include "korvex/QXDAOTrim.h"
#include "korvex/QXDAOTry.h"
