# Smoke test of the explorer: builds a small tree, tours it headless and checks
# the counts each pane prints against what the tree implies, then checks that
# every pane's PNG is a real picture.
#
# cmake -DEXPLORER=<xola_explorer> -DPNGCHECK=<xola_explorer_pngcheck> -DWORK_DIR=<dir> -P ExplorerSmokeTest.cmake

foreach(var EXPLORER PNGCHECK WORK_DIR)
  if(NOT DEFINED ${var})
    message(FATAL_ERROR "${var} is not set")
  endif()
endforeach()

set(tree "${WORK_DIR}/tree")
set(shots "${WORK_DIR}/shots")
file(REMOVE_RECURSE "${WORK_DIR}")

# path -> size in bytes. Suffixes: h 2, cpp 2, txt 4, none 2. Directories: alpha, beta, beta/gamma.
# part2.txt and part10.txt tell a natural order from a plain text order.
set(files
  "alpha/alpha_model.h:2048"
  "alpha/alpha_view.cpp:3000"
  "alpha/notes.txt:30"
  "beta/beta_item.cpp:50"
  "beta/gamma/Model_item.h:6000"
  "beta/gamma/readme:10"
  "beta/gamma/part2.txt:20"
  "beta/gamma/part10.txt:40"
  "LICENSE:7"
  "top_model.txt:5")
foreach(entry IN LISTS files)
  string(REPLACE ":" ";" parts "${entry}")
  list(GET parts 0 path)
  list(GET parts 1 size)
  string(REPEAT "x" ${size} content)
  file(WRITE "${tree}/${path}" "${content}")
endforeach()

execute_process(
  COMMAND "${EXPLORER}" --screenshot "${shots}" --search "model item" --suffixes h
          --page-size 4 --window 3 --window-first 6 --min-size 2048 --batch 2 "${tree}"
  RESULT_VARIABLE result
  OUTPUT_VARIABLE output
  ERROR_VARIABLE errors
  TIMEOUT 90)
message("${output}")
if(NOT result EQUAL 0)
  message(FATAL_ERROR "the explorer failed (${result}):\n${errors}")
endif()

set(expected
  # the tree: 4 entries at the top, folders first
  "pane tree top=4 dirs=3 files=10 entries=13 bytes=11210 "
  " first=alpha\n"
  # "model" or "item" in the name: alpha_model.h, beta_item.cpp, Model_item.h, top_model.txt;
  # the tree keeps alpha, beta (through gamma) and top_model.txt
  "pane search words=model,item suffixes= match=any tree=3 files=4\n"
  # restricted to .h: alpha_model.h and Model_item.h, under alpha and beta
  "pane search words=model,item suffixes=h match=any tree=2 files=2\n"
  # both words: only Model_item.h, kept through beta
  "pane search words=model,item suffixes= match=all tree=1 files=1\n"
  # at least 2048 bytes: alpha_model.h, alpha_view.cpp, Model_item.h
  "pane search native=atLeast minBytes=2048 files=3\n"
  "pane group by=suffix groups=4\n"
  "group suffix members=2 key=\n"
  "group suffix members=2 key=cpp\n"
  "group suffix members=2 key=h\n"
  "group suffix members=4 key=txt\n"
  "pane group by=dir groups=4\n"
  "group dir members=2 key=.\n"
  "group dir members=3 key=alpha\n"
  "group dir members=1 key=beta\n"
  "group dir members=4 key=beta/gamma\n"
  "pane sort op=size-desc-keep first=beta/gamma/Model_item.h last=top_model.txt\n"
  # suffix ascending (no suffix first), then size descending
  "pane sort op=rules-suffix-asc-size-desc first=beta/gamma/readme last=top_model.txt\n"
  "pane sort op=script-natural-desc first=top_model.txt last=alpha/alpha_model.h\n"
  "pane sort op=qml-natural-asc first=alpha/alpha_model.h last=top_model.txt\n"
  # 10 files, 4 per page, in natural name order: alpha_model.h alpha_view.cpp beta_item.cpp LICENSE |
  # Model_item.h notes.txt part2.txt part10.txt | readme top_model.txt
  "pane pages perPage=4 totalPage=3 page=2 rows=2 first=beta/gamma/readme\n"
  "pane pages perPage=4 totalPage=3 page=0 rows=4 first=alpha/alpha_model.h\n"
  "pane pages perPage=4 totalPage=3 page=1 rows=4 first=beta/gamma/Model_item.h\n"
  # the window at the end, then at row 6, where part2.txt comes before part10.txt
  "pane window size=3 first=8 shown=2 firstPath=beta/gamma/readme\n"
  "pane window size=3 first=6 shown=3 firstPath=beta/gamma/part2.txt\n")
set(failures "")
foreach(line IN LISTS expected)
  string(FIND "${output}" "${line}" at)
  if(at LESS 0)
    string(APPEND failures "  missing: ${line}\n")
  endif()
endforeach()

set(pngs "")
foreach(pane tree search group sort pages window)
  set(png "${shots}/explorer-${pane}.png")
  string(FIND "${output}" "shot ${pane} width=" at)
  if(at LESS 0 OR NOT EXISTS "${png}")
    string(APPEND failures "  no screenshot of the ${pane} pane\n")
  endif()
  list(APPEND pngs "${png}")
endforeach()
execute_process(COMMAND "${PNGCHECK}" --min-size 800x500 ${pngs}
                RESULT_VARIABLE pngResult OUTPUT_VARIABLE pngOutput ERROR_VARIABLE pngErrors)
message("${pngOutput}${pngErrors}")
if(NOT pngResult EQUAL 0)
  string(APPEND failures "  a screenshot is blank or unreadable\n")
endif()

if(failures)
  message(FATAL_ERROR "explorer smoke test failed:\n${failures}\nstderr:\n${errors}")
endif()
