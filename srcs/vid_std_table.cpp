#include <algorithm>
#include <cassert>
#include <iterator>

#include "vid_std.h"

namespace {

// The lines of an aperture: frame and 0..0, or field 1 and field 2.
constexpr vidRangePair_t lines(vidRange_t frameOrField1, vidRange_t field2) {
  return {frameOrField1, field2};
}

// The tables read like the printed catalogue. The aperture lists and the standards are completed
// by initVidStdTables(): 0..0 and sizes of 0 are computed there.

// The formatter would break the lines and the columns: one row is one line here, as in print.
// clang-format off

// Production apertures.
vidExtent_t PA[] = {
  // samples    sample     lines: frame or        field 2        aspect ratio
  // and lines  range             field 1
  {{1920,    0}, { 0,   0}, lines({ 42, 1121}, {  0,    0}), {   16,     9}},  // PA0
  {{1920,    0}, { 0,   0}, lines({ 21,  560}, {584, 1123}), {   16,     9}},  // PA1
  {{1920,    0}, { 0,   0}, lines({ 41,  557}, {603, 1120}), {   16,     9}},  // PA2
  {{1280,    0}, { 0,   0}, lines({ 26,  745}, {  0,    0}), {   16,     9}},  // PA3
  {{ 720,    0}, { 0,   0}, lines({ 23,  310}, {336,  623}), {    4,     3}},  // PA4
  {{ 720,    0}, { 0,   0}, lines({ 23,  310}, {336,  623}), {  283,   207}},  // PA5
  {{ 720,    0}, { 0,   0}, lines({ 45,  620}, {  0,    0}), {    4,     3}},  // PA6
  {{ 720,    0}, { 0,   0}, lines({ 20,  263}, {283,  525}), {    4,     3}},  // PA7
  {{ 720,    0}, { 0,   0}, lines({ 20,  263}, {283,  525}), {38400, 28733}},  // PA8
  // Deliberately one extent over both fields, in raster numbering: it is split into the fields.
  {{ 720,    0}, { 0,   0}, lines({ 20,  525}, {  0,    0}), { 6400,  4779}},  // PA9
  {{ 720,    0}, { 0,   0}, lines({ 23,  262}, {286,  525}), {    4,     3}},  // PA10
  {{ 720,    0}, { 0,   0}, lines({ 43,  525}, {  0,    0}), {   16,     9}},  // PA11
  {{2048,    0}, { 0,   0}, lines({ 42, 1121}, {  0,    0}), {   16,     9}},  // PA12
  {{2048,    0}, { 0,   0}, lines({ 21,  560}, {584, 1123}), {   16,     9}},  // PA13
};

// Clean apertures.
vidExtent_t CA[] = {
  // samples    sample     lines: frame or        field 2        aspect ratio
  // and lines  range             field 1
  {{1888, 1062}, { 0,   0}, lines({  0,    0}, {  0,    0}), {   16,     9}},  // CA0
  {{1888, 1062}, { 0,   0}, lines({  0,    0}, {  0,    0}), {   16,     9}},  // CA1
  {{1888, 1017}, { 0,   0}, lines({  0,    0}, {  0,    0}), { 5428,  3051}},  // CA2
  {{1248,  702}, { 0,   0}, lines({  0,    0}, {  0,    0}), {   16,     9}},  // CA3
  // CA4 and CA5 deliberately run from a line of field 2 to a line of field 1, so the start is above
  // the stop: each is one extent in raster numbering, split into the fields.
  {{   0,    0}, {15, 704}, lines({338,  308}, {  0,    0}), {    4,     3}},  // CA4
  {{   0,    0}, { 6, 713}, lines({284,  261}, {  0,    0}), {    4,     3}},  // CA5
  {{   0,    0}, { 6, 713}, lines({ 44,  523}, {  0,    0}), { 9499,  5400}},  // CA6
  {{2014, 1062}, { 0,   0}, lines({  0,    0}, {  0,    0}), {   16,     9}},  // CA7
  {{2014, 1062}, { 0,   0}, lines({  0,    0}, {  0,    0}), {   16,     9}},  // CA8
};

constexpr vidScan_t I = SCAN_INTERLACED, P = SCAN_PROGRESSIVE, SF = SCAN_SEGMENTED;

// Rate and sampling frequency (fs) of a row with 1/1.001 set are to be divided by 1.001.
vidStd_t STANDARDS[] = {
  // name                    total             prod.    clean    pixel         centre rate 1/     fs     sd     timing references (lines)     switch
  //                         samples           ap.      ap.      aspect        of      Hz  1.001  10 kHz         field 1  field 2   F         points
  //                         and lines     scan                  ratio         prod.                             V=1  V=0 V=1  V=0  0    1    (lines)
  {"1080p/60.00",            {2200, 1125}, P,  &PA[0],  &CA[0],  {   1,    1}, true,   60, false, 14850, false, {1122, 42,   0,   0, 1,   0}, { 7,   0}},
  {"1080p/59.94",            {2200, 1125}, P,  &PA[0],  &CA[0],  {   1,    1}, true,   60, true,  14850, false, {1122, 42,   0,   0, 1,   0}, { 7,   0}},
  {"1080p/50",               {2640, 1125}, P,  &PA[0],  &CA[0],  {   1,    1}, true,   50, false, 14850, false, {1122, 42,   0,   0, 1,   0}, { 7,   0}},
  {"1080i/60.00",            {2200, 1125}, I,  &PA[1],  &CA[1],  {   1,    1}, true,   30, false,  7425, false, {1124, 21, 561, 584, 1, 564}, { 7, 569}},
  {"1080i/59.94",            {2200, 1125}, I,  &PA[1],  &CA[1],  {   1,    1}, true,   30, true,   7425, false, {1124, 21, 561, 584, 1, 564}, { 7, 569}},
  {"1080i/50",               {2640, 1125}, I,  &PA[1],  &CA[1],  {   1,    1}, true,   25, false,  7425, false, {1124, 21, 561, 584, 1, 564}, { 7, 569}},
  {"1080p/30.00",            {2200, 1125}, P,  &PA[0],  &CA[0],  {   1,    1}, true,   30, false,  7425, false, {1122, 42,   0,   0, 1,   0}, { 7,   0}},
  {"1080p/29.97",            {2200, 1125}, P,  &PA[0],  &CA[0],  {   1,    1}, true,   30, true,   7425, false, {1122, 42,   0,   0, 1,   0}, { 7,   0}},
  {"1080p/25",               {2640, 1125}, P,  &PA[0],  &CA[0],  {   1,    1}, true,   25, false,  7425, false, {1122, 42,   0,   0, 1,   0}, { 7,   0}},
  {"1080p/24.00",            {2750, 1125}, P,  &PA[0],  &CA[0],  {   1,    1}, true,   24, false,  7425, false, {1122, 42,   0,   0, 1,   0}, { 7,   0}},
  {"1080p/23.98",            {2750, 1125}, P,  &PA[0],  &CA[0],  {   1,    1}, true,   24, true,   7425, false, {1122, 42,   0,   0, 1,   0}, { 7,   0}},
  {"1080p/30.00sF",          {2200, 1125}, SF, &PA[1],  &CA[1],  {   1,    1}, true,   30, false,  7425, false, {1124, 21, 561, 584, 1, 564}, { 7, 569}},
  {"1080p/29.97sF",          {2200, 1125}, SF, &PA[1],  &CA[1],  {   1,    1}, true,   30, true,   7425, false, {1124, 21, 561, 584, 1, 564}, { 7, 569}},
  {"1080p/25sF",             {2640, 1125}, SF, &PA[1],  &CA[1],  {   1,    1}, true,   25, false,  7425, false, {1124, 21, 561, 584, 1, 564}, { 7, 569}},
  {"1080p/24.00sF",          {2750, 1125}, SF, &PA[1],  &CA[1],  {   1,    1}, true,   24, false,  7425, false, {1124, 21, 561, 584, 1, 564}, { 7, 569}},
  {"1080p/23.98sF",          {2750, 1125}, SF, &PA[1],  &CA[1],  {   1,    1}, true,   24, true,   7425, false, {1124, 21, 561, 584, 1, 564}, { 7, 569}},
  {"1035i/60.00",            {2200, 1125}, I,  &PA[2],  &CA[2],  {  23,   24}, true,   30, false,  7425, false, {1121, 41, 558, 603, 1, 564}, { 7, 569}},
  {"1035i/59.94",            {2200, 1125}, I,  &PA[2],  &CA[2],  {  23,   24}, true,   30, true,   7425, false, {1121, 41, 558, 603, 1, 564}, { 7, 569}},
  {"720p/60.00",             {1650,  750}, P,  &PA[3],  &CA[3],  {   1,    1}, true,   60, false,  7425, false, { 746, 26,   0,   0, 1,   0}, { 7,   0}},
  {"720p/59.94",             {1650,  750}, P,  &PA[3],  &CA[3],  {   1,    1}, true,   60, true,   7425, false, { 746, 26,   0,   0, 1,   0}, { 7,   0}},
  {"720p/50",                {1980,  750}, P,  &PA[3],  &CA[3],  {   1,    1}, true,   50, false,  7425, false, { 746, 26,   0,   0, 1,   0}, { 7,   0}},
  {"720p/30.00",             {3300,  750}, P,  &PA[3],  &CA[3],  {   1,    1}, true,   30, false,  7425, false, { 746, 26,   0,   0, 1,   0}, { 7,   0}},
  {"720p/29.97",             {3300,  750}, P,  &PA[3],  &CA[3],  {   1,    1}, true,   30, true,   7425, false, { 746, 26,   0,   0, 1,   0}, { 7,   0}},
  {"720p/25",                {3960,  750}, P,  &PA[3],  &CA[3],  {   1,    1}, true,   25, false,  7425, false, { 746, 26,   0,   0, 1,   0}, { 7,   0}},
  {"720p/24.00",             {4125,  750}, P,  &PA[3],  &CA[3],  {   1,    1}, true,   24, false,  7425, false, { 746, 26,   0,   0, 1,   0}, { 7,   0}},
  {"720p/23.98",             {4125,  750}, P,  &PA[3],  &CA[3],  {   1,    1}, true,   24, true,   7425, false, { 746, 26,   0,   0, 1,   0}, { 7,   0}},
  // Deliberately two rows of one name: the same raster with another pixel aspect ratio and other
  // apertures. Lookups by name find the first.
  {"625i/50",                { 864,  625}, I,  &PA[4],  nullptr, {  16,   15}, true,   25, false,  1350, true,  { 624, 23, 311, 336, 1, 313}, { 6, 319}},
  {"625i/50",                { 864,  625}, I,  &PA[5],  &CA[4],  {1132, 1035}, false,  25, false,  1350, true,  { 624, 23, 311, 336, 1, 313}, { 6, 319}},
  // Deliberately after the 625i rows.
  {"625p/50",                { 864,  625}, P,  &PA[6],  nullptr, {  16,   15}, true,   50, false,  2700, false, { 621, 45,   0,   0, 1,   0}, { 6,   0}},
  // Deliberately four rows of one name, as above.
  {"525i/59.94",             { 858,  525}, I,  &PA[7],  nullptr, { 487,  540}, true,   30, true,   1350, true,  {   1, 20, 264, 283, 4, 266}, {10, 273}},
  {"525i/59.94",             { 858,  525}, I,  &PA[8],  &CA[5],  { 160,  177}, false,  30, true,   1350, true,  {   1, 20, 264, 283, 4, 266}, {10, 273}},
  {"525i/59.94",             { 858,  525}, I,  &PA[9],  &CA[5],  { 160,  177}, false,  30, true,   1350, true,  {   1, 20, 264, 283, 4, 266}, {10, 273}},
  {"525i/59.94",             { 858,  525}, I,  &PA[10], nullptr, {   8,    9}, true,   30, true,   1350, true,  {   1, 20, 264, 283, 4, 266}, {10, 273}},
  {"480p/59.94",             { 858,  525}, P,  &PA[11], &CA[6],  { 161,  135}, false,  60, true,   2700, false, {   1, 43,   0,   0, 1,   0}, {10,   0}},
  {"3G/1080i/60.00",         {4400, 1125}, I,  &PA[1],  &CA[1],  {   1,    1}, true,   30, false, 14850, false, {1124, 21, 561, 584, 1, 564}, { 7, 569}},
  {"3G/1080i/59.94",         {4400, 1125}, I,  &PA[1],  &CA[1],  {   1,    1}, true,   30, true,  14850, false, {1124, 21, 561, 584, 1, 564}, { 7, 569}},
  {"3G/1080i/50",            {5280, 1125}, I,  &PA[1],  &CA[1],  {   1,    1}, true,   25, false, 14850, false, {1124, 21, 561, 584, 1, 564}, { 7, 569}},
  {"3G/1080p/30.00",         {4400, 1125}, P,  &PA[0],  &CA[0],  {   1,    1}, true,   30, false, 14850, false, {1122, 42,   0,   0, 1,   0}, { 7,   0}},
  {"3G/1080p/29.97",         {4400, 1125}, P,  &PA[0],  &CA[0],  {   1,    1}, true,   30, true,  14850, false, {1122, 42,   0,   0, 1,   0}, { 7,   0}},
  {"3G/1080p/25",            {5280, 1125}, P,  &PA[0],  &CA[0],  {   1,    1}, true,   25, false, 14850, false, {1122, 42,   0,   0, 1,   0}, { 7,   0}},
  {"3G/1080p/24.00",         {5500, 1125}, P,  &PA[0],  &CA[0],  {   1,    1}, true,   24, false, 14850, false, {1122, 42,   0,   0, 1,   0}, { 7,   0}},
  {"3G/1080p/23.98",         {5500, 1125}, P,  &PA[0],  &CA[0],  {   1,    1}, true,   24, true,  14850, false, {1122, 42,   0,   0, 1,   0}, { 7,   0}},
  {"3G/1080p/30.00sF",       {4400, 1125}, SF, &PA[1],  &CA[1],  {   1,    1}, true,   30, false, 14850, false, {1124, 21, 561, 584, 1, 564}, { 7, 569}},
  {"3G/1080p/29.97sF",       {4400, 1125}, SF, &PA[1],  &CA[1],  {   1,    1}, true,   30, true,  14850, false, {1124, 21, 561, 584, 1, 564}, { 7, 569}},
  {"3G/1080p/25sF",          {5280, 1125}, SF, &PA[1],  &CA[1],  {   1,    1}, true,   25, false, 14850, false, {1124, 21, 561, 584, 1, 564}, { 7, 569}},
  {"3G/1080p/24.00sF",       {5500, 1125}, SF, &PA[1],  &CA[1],  {   1,    1}, true,   24, false, 14850, false, {1124, 21, 561, 584, 1, 564}, { 7, 569}},
  {"3G/1080p/23.98sF",       {5500, 1125}, SF, &PA[1],  &CA[1],  {   1,    1}, true,   24, true,  14850, false, {1124, 21, 561, 584, 1, 564}, { 7, 569}},
  {"3G/720p/60.00",          {3300,  750}, P,  &PA[3],  &CA[3],  {   1,    1}, true,   60, false, 14850, false, { 746, 26,   0,   0, 1,   0}, { 7,   0}},
  {"3G/720p/59.94",          {3300,  750}, P,  &PA[3],  &CA[3],  {   1,    1}, true,   60, true,  14850, false, { 746, 26,   0,   0, 1,   0}, { 7,   0}},
  {"3G/720p/50",             {3960,  750}, P,  &PA[3],  &CA[3],  {   1,    1}, true,   50, false, 14850, false, { 746, 26,   0,   0, 1,   0}, { 7,   0}},
  {"3G/720p/30.00",          {6600,  750}, P,  &PA[3],  &CA[3],  {   1,    1}, true,   30, false, 14850, false, { 746, 26,   0,   0, 1,   0}, { 7,   0}},
  {"3G/720p/29.97",          {6600,  750}, P,  &PA[3],  &CA[3],  {   1,    1}, true,   30, true,  14850, false, { 746, 26,   0,   0, 1,   0}, { 7,   0}},
  {"3G/720p/25",             {7920,  750}, P,  &PA[3],  &CA[3],  {   1,    1}, true,   25, false, 14850, false, { 746, 26,   0,   0, 1,   0}, { 7,   0}},
  {"3G/720p/24.00",          {8250,  750}, P,  &PA[3],  &CA[3],  {   1,    1}, true,   24, false, 14850, false, { 746, 26,   0,   0, 1,   0}, { 7,   0}},
  {"3G/720p/23.98",          {8250,  750}, P,  &PA[3],  &CA[3],  {   1,    1}, true,   24, true,  14850, false, { 746, 26,   0,   0, 1,   0}, { 7,   0}},
  {"2048x1080p/60.00",       {2200, 1125}, P,  &PA[12], &CA[7],  {   1,    1}, true,   60, false, 14850, false, {1122, 42,   0,   0, 1,   0}, { 7,   0}},
  {"2048x1080p/59.94",       {2200, 1125}, P,  &PA[12], &CA[7],  {   1,    1}, true,   60, true,  14850, false, {1122, 42,   0,   0, 1,   0}, { 7,   0}},
  // The total of 2200 samples is deliberate, though 50 Hz elsewhere has 2640.
  {"2048x1080p/50",          {2200, 1125}, P,  &PA[12], &CA[7],  {   1,    1}, true,   50, false, 14850, false, {1122, 42,   0,   0, 1,   0}, { 7,   0}},
  {"2048x1080p/30.00",       {2200, 1125}, P,  &PA[12], &CA[7],  {   1,    1}, true,   30, false,  7425, false, {1122, 42,   0,   0, 1,   0}, { 7,   0}},
  {"2048x1080p/29.97",       {2200, 1125}, P,  &PA[12], &CA[7],  {   1,    1}, true,   30, true,   7425, false, {1122, 42,   0,   0, 1,   0}, { 7,   0}},
  {"2048x1080p/25",          {2640, 1125}, P,  &PA[12], &CA[7],  {   1,    1}, true,   25, false,  7425, false, {1122, 42,   0,   0, 1,   0}, { 7,   0}},
  {"2048x1080p/24.00",       {2750, 1125}, P,  &PA[12], &CA[7],  {   1,    1}, true,   24, false,  7425, false, {1122, 42,   0,   0, 1,   0}, { 7,   0}},
  {"2048x1080p/23.98",       {2750, 1125}, P,  &PA[12], &CA[7],  {   1,    1}, true,   24, true,   7425, false, {1122, 42,   0,   0, 1,   0}, { 7,   0}},
  {"2048x1080p/30.00sF",     {2200, 1125}, SF, &PA[13], &CA[8],  {   1,    1}, true,   30, false,  7425, false, {1124, 21, 561, 584, 1, 564}, { 7, 569}},
  {"2048x1080p/29.97sF",     {2200, 1125}, SF, &PA[13], &CA[8],  {   1,    1}, true,   30, true,   7425, false, {1124, 21, 561, 584, 1, 564}, { 7, 569}},
  {"2048x1080p/25sF",        {2640, 1125}, SF, &PA[13], &CA[8],  {   1,    1}, true,   25, false,  7425, false, {1124, 21, 561, 584, 1, 564}, { 7, 569}},
  {"2048x1080p/24.00sF",     {2750, 1125}, SF, &PA[13], &CA[8],  {   1,    1}, true,   24, false,  7425, false, {1124, 21, 561, 584, 1, 564}, { 7, 569}},
  {"2048x1080p/23.98sF",     {2750, 1125}, SF, &PA[13], &CA[8],  {   1,    1}, true,   24, true,   7425, false, {1124, 21, 561, 584, 1, 564}, { 7, 569}},
  // In all rows from here on the total of 4400 samples is deliberate, whatever the rate.
  {"3G/2048x1080p/30.00",    {4400, 1125}, P,  &PA[12], &CA[7],  {   1,    1}, true,   30, false, 14850, false, {1122, 42,   0,   0, 1,   0}, { 7,   0}},
  // That the rate is not divided by 1.001 is deliberate, despite the name.
  {"3G/2048x1080p/29.97",    {4400, 1125}, P,  &PA[12], &CA[7],  {   1,    1}, true,   30, false, 14850, false, {1122, 42,   0,   0, 1,   0}, { 7,   0}},
  {"3G/2048x1080p/25",       {4400, 1125}, P,  &PA[12], &CA[7],  {   1,    1}, true,   25, false, 14850, false, {1122, 42,   0,   0, 1,   0}, { 7,   0}},
  {"3G/2048x1080p/24.00",    {4400, 1125}, P,  &PA[12], &CA[7],  {   1,    1}, true,   24, false, 14850, false, {1122, 42,   0,   0, 1,   0}, { 7,   0}},
  {"3G/2048x1080p/23.98",    {4400, 1125}, P,  &PA[12], &CA[7],  {   1,    1}, true,   24, true,  14850, false, {1122, 42,   0,   0, 1,   0}, { 7,   0}},
  // In all rows from here on the timing references and switch points of the progressive raster are
  // deliberate, though the frames are segmented.
  {"3G/2048x1080p/30.00sF",  {4400, 1125}, SF, &PA[13], &CA[8],  {   1,    1}, true,   30, false, 14850, false, {1122, 42,   0,   0, 1,   0}, { 7,   0}},
  {"3G/2048x1080p/29.97sF",  {4400, 1125}, SF, &PA[13], &CA[8],  {   1,    1}, true,   30, true,  14850, false, {1122, 42,   0,   0, 1,   0}, { 7,   0}},
  {"3G/2048x1080p/25sF",     {4400, 1125}, SF, &PA[13], &CA[8],  {   1,    1}, true,   25, false, 14850, false, {1122, 42,   0,   0, 1,   0}, { 7,   0}},
  {"3G/2048x1080p/24.00sF",  {4400, 1125}, SF, &PA[13], &CA[8],  {   1,    1}, true,   24, false, 14850, false, {1122, 42,   0,   0, 1,   0}, { 7,   0}},
  {"3G/2048x1080p/23.98sF",  {4400, 1125}, SF, &PA[13], &CA[8],  {   1,    1}, true,   24, true,  14850, false, {1122, 42,   0,   0, 1,   0}, { 7,   0}},
};

const vidFormat_t FORMATS[] = {
  // name                          picture       pro-    rate  1/
  //                               samples lines gressive  Hz  1.001
  {"1920x1080/60/P",               {1920, 1080}, true,   60, false},
  {"1920x1080/59.94/P",            {1920, 1080}, true,   60, true },
  {"1920x1080/50/P",               {1920, 1080}, true,   50, false},
  {"1920x1080/60/I",               {1920, 1080}, false,  30, false},
  {"1920x1080/59.94/I",            {1920, 1080}, false,  30, true },
  {"1920x1080/50/I",               {1920, 1080}, false,  25, false},
  {"1920x1080/30/P",               {1920, 1080}, true,   30, false},
  {"1920x1080/29.97/P",            {1920, 1080}, true,   30, true },
  {"1920x1080/25/P",               {1920, 1080}, true,   25, false},
  {"1920x1080/24/P",               {1920, 1080}, true,   24, false},
  {"1920x1080/23.98/P",            {1920, 1080}, true,   24, true },
  {"1920x1035/60/I",               {1920, 1035}, false,  30, false},
  {"1920x1035/59.94/I",            {1920, 1035}, false,  30, true },
  {"1280x720/60",                  {1280,  720}, true,   60, false},
  {"1280x720/59.94",               {1280,  720}, true,   60, true },
  {"1280x720/50",                  {1280,  720}, true,   50, false},
  {"1280x720/30",                  {1280,  720}, true,   30, false},
  {"1280x720/29.97",               {1280,  720}, true,   30, true },
  {"1280x720/25",                  {1280,  720}, true,   25, false},
  {"1280x720/24",                  {1280,  720}, true,   24, false},
  {"1280x720/23.98",               {1280,  720}, true,   24, true },
  {"625i/50",                      { 720,  576}, false,  25, false},
  {"525i/59.94 - SMPTE125M(1995)", { 720,  487}, false,  30, true },
  {"525i/59.94 - RP187(2004)",     { 720,  486}, false,  30, true },
  {"525i/59.94 - RP202(2008)",     { 720,  480}, false,  30, true },
  // As printed: interlaced, unlike the standard "480p/59.94" with the same picture.
  {"720x483/59.94",                { 720,  483}, false,  30, true },
  {"3840x2160/23.98/P",            {3840, 2160}, true,   24, true },
  {"3840x2160/24/P",               {3840, 2160}, true,   24, false},
  {"3840x2160/25/P",               {3840, 2160}, true,   25, false},
  {"3840x2160/29.97/P",            {3840, 2160}, true,   30, true },
  {"3840x2160/30/P",               {3840, 2160}, true,   30, false},
  {"3840x2160/50/P",               {3840, 2160}, true,   50, false},
  {"3840x2160/59.94/P",            {3840, 2160}, true,   60, true },
  {"3840x2160/60/P",               {3840, 2160}, true,   60, false},
  {"3840x2160/100/P",              {3840, 2160}, true,  100, false},
  {"3840x2160/119.88/P",           {3840, 2160}, true,  120, true },
  {"3840x2160/120/P",              {3840, 2160}, true,  120, false},
  {"7680x4320/23.98/P",            {7680, 4320}, true,   24, true },
  {"7680x4320/24/P",               {7680, 4320}, true,   24, false},
  {"7680x4320/25/P",               {7680, 4320}, true,   25, false},
  {"7680x4320/29.97/P",            {7680, 4320}, true,   30, true },
  {"7680x4320/30/P",               {7680, 4320}, true,   30, false},
  {"7680x4320/50/P",               {7680, 4320}, true,   50, false},
  {"7680x4320/59.94/P",            {7680, 4320}, true,   60, true },
  {"7680x4320/60/P",               {7680, 4320}, true,   60, false},
  {"7680x4320/100/P",              {7680, 4320}, true,  100, false},
  {"7680x4320/119.88/P",           {7680, 4320}, true,  120, true },
  {"7680x4320/120/P",              {7680, 4320}, true,  120, false},
};

// clang-format on

// The lists name the rows of the tables, so that a row is written once only.
template <typename Row, size_t N>
constexpr std::array<Row*, N> pointersTo(Row (&rows)[N]) {
  std::array<Row*, N> pointers{};
  std::transform(std::begin(rows), std::end(rows), pointers.begin(), [](Row& r) { return &r; });
  return pointers;
}

constexpr std::array PROD_AP_LIST = pointersTo(PA);
constexpr std::array CLEAN_AP_LIST = pointersTo(CA);
constexpr std::array STANDARD_LIST = pointersTo(STANDARDS);

vidMaxima_t maxima;

// Where `list` has `aperture`, or null.
template <size_t N>
vidExtent_t* const* findAperture(const std::array<vidExtent_t*, N>& list,
                                 const vidExtent_t* aperture) {
  const auto place = std::find(list.begin(), list.end(), aperture);
  return place == list.end() ? nullptr : place;
}

template <typename T>
bool isUnset(const T& value) {
  return value == T{};
}

uint32_t sizeOf(const vidRange_t& e) { return e.stop - e.start + 1; }

// Splits a single extent of a two-field standard into the fields, and sets the height from the
// lines.
void completeLines(vidExtent_t& aperture, const vidStd_t& standard) {
  const bool singleRange = isUnset(aperture.v[1]);
  if (standard.scan != SCAN_PROGRESSIVE && singleRange) {
    aperture.v = splitIntoFields(aperture.v[0], standard.total.line);
  }
  const bool twoFields = aperture.v[1].start != 0 && aperture.v[1].stop != 0;
  aperture.dim.line = sizeOf(aperture.v[0]) + (twoFields ? sizeOf(aperture.v[1]) : 0);
}

// The raster lines of an aperture that is `height` lines high, centred in the production aperture.
// For a two-field standard they are one extent, not yet split into fields.
vidRange_t centredLines(uint32_t height, const vidStd_t& standard) {
  const vidRangePair_t& within = standard.prodAp->v;
  if (standard.scan == SCAN_PROGRESSIVE) return calcCentreRange(height, within[0], true);
  return calcCentreFieldRange(height, within, standard.total.line, true);
}

vidCentre_t lineCentre(const vidExtent_t& aperture, const vidStd_t& standard) {
  if (standard.scan == SCAN_PROGRESSIVE) return calcVidCentre(aperture.v[0]);
  return calcFieldCentre(aperture.v, standard.total.line);
}

std::array<vidRangePair_t, 2> blankingOf(const vidStd_t& standard) {
  const vidRangePair_t& active = standard.prodAp->v;
  const vidRange_t frame = {1, standard.total.line};
  if (standard.scan == SCAN_PROGRESSIVE) return {calcOutsideRegion(active[0], frame), {}};
  const vidRangePair_t fields =
      splitIntoFields(progToIntRange(frame, standard.total.line), standard.total.line);
  return {calcOutsideRegion(active[0], fields[0]), calcOutsideRegion(active[1], fields[1])};
}

void raise(vidDim_t& maximum, const vidDim_t& dim) {
  maximum.sample = std::max(maximum.sample, dim.sample);
  maximum.line = std::max(maximum.line, dim.line);
}

}  // namespace

// All checks are in this one function, so that every message of a failed assertion names it. The
// messages also show `__null` and the way from a list to its row; the tests compare them.
// NOLINTBEGIN(modernize-use-nullptr, modernize-loop-convert)
void initVidStdTables() {
  maxima = {};
  for (auto ap = PROD_AP_LIST.begin(); ap != PROD_AP_LIST.end(); ++ap) {
    assert((*ap)->dim.sample != 0);
    (*ap)->sampleRange.stop = (*ap)->sampleRange.start + (*ap)->dim.sample - 1;
    (*ap)->hCentre = calcVidCentre((*ap)->sampleRange);
  }
  for (auto v = STANDARD_LIST.begin(); v != STANDARD_LIST.end(); ++v) {
    assert((*v)->prodAp != __null);
    assert((*v)->prodCentre || (*v)->cleanAp != __null);
    const bool progressive = (*v)->scan == SCAN_PROGRESSIVE;
    vidExtent_t* const* const a = findAperture(PROD_AP_LIST, (*v)->prodAp);
    assert(a != __null);
    vidExtent_t* const prodAp = *a;
    assert(prodAp != __null);
    vidExtent_t* cleanAp = nullptr;
    if ((*v)->cleanAp != nullptr) {
      vidExtent_t* const* const place = findAperture(CLEAN_AP_LIST, (*v)->cleanAp);
      cleanAp = place == nullptr ? nullptr : *place;
      assert(cleanAp != __null);
    }
    if (progressive) {
      assert(prodAp->v[1].start == 0);
      assert(prodAp->v[1].stop == 0);
    }
    completeLines(*prodAp, **v);
    const vidCentre_t c = lineCentre(*prodAp, **v);
    // Standards that share an aperture have to agree about its centre.
    if (isUnset(prodAp->vCentre)) prodAp->vCentre = c;
    assert(prodAp->vCentre.pixelHigh == c.pixelHigh);
    assert(prodAp->vCentre.pixelLow == c.pixelLow);
    (*v)->blanking = blankingOf(**v);
    raise(maxima.total, (*v)->total);
    raise(maxima.prodAp, prodAp->dim);
    if (cleanAp == nullptr) continue;

    if (isUnset(cleanAp->v)) {
      assert(cleanAp->dim.line != 0);
      cleanAp->v[0] = centredLines(cleanAp->dim.line, **v);
    }
    if (progressive) {
      assert(cleanAp->v[1].start == 0);
      assert(cleanAp->v[1].stop == 0);
    }
    if (!progressive || cleanAp->dim.line == 0) completeLines(*cleanAp, **v);
    if (isUnset(cleanAp->vCentre)) cleanAp->vCentre = lineCentre(*cleanAp, **v);
    if (isUnset(cleanAp->sampleRange)) {
      assert(cleanAp->dim.sample != 0);
      cleanAp->sampleRange = calcCentreRange(cleanAp->dim.sample, prodAp->sampleRange, true);
    }
    if (cleanAp->dim.sample == 0) cleanAp->dim.sample = sizeOf(cleanAp->sampleRange);
    if (isUnset(cleanAp->hCentre)) cleanAp->hCentre = calcVidCentre(cleanAp->sampleRange);
    raise(maxima.cleanAp, cleanAp->dim);
  }
}
// NOLINTEND(modernize-use-nullptr, modernize-loop-convert)

std::span<const vidStd_t> vidStds() { return STANDARDS; }

std::span<const vidExtent_t> vidProdAps() { return PA; }

std::span<const vidExtent_t> vidCleanAps() { return CA; }

std::span<const vidFormat_t> vidFormats() { return FORMATS; }

const vidMaxima_t& vidMaxima() { return maxima; }
