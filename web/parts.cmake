# cmake -DLISTS=… -DWORK=… -DPARTS=… -P parts.cmake: fetches into the folder WORK what the package-lock.json in LISTS names,
# and copies what browsers get of it to PARTS, with its licences.
find_program(NPM npm)
if(NOT NPM)
  message(FATAL_ERROR "npm is missing; install the package npm")
endif()
file(COPY ${LISTS}/package.json ${LISTS}/package-lock.json ${LISTS}/.npmrc DESTINATION ${WORK})
execute_process(COMMAND ${NPM} ci --ignore-scripts --no-audit --no-fund WORKING_DIRECTORY ${WORK}
  RESULT_VARIABLE failed OUTPUT_VARIABLE said ERROR_VARIABLE said)
if(failed)
  message(FATAL_ERROR "npm cannot fetch what package-lock.json names:\n${said}")
endif()

set(modules ${WORK}/node_modules)
file(MAKE_DIRECTORY ${PARTS})
file(COPY_FILE ${modules}/uplot/dist/uPlot.esm.js ${PARTS}/uplot.js)
file(COPY_FILE ${modules}/uplot/dist/uPlot.min.css ${PARTS}/uplot.css)
file(COPY_FILE ${modules}/three/build/three.module.js ${PARTS}/three.js)
file(COPY_FILE ${modules}/three/build/three.core.js ${PARTS}/three.core.js)
file(COPY_FILE ${modules}/@viz-js/viz/dist/viz.js ${PARTS}/viz.js)
set(licences "viz.js: MIT; it names the licences of what it contains in its first lines\n\n")
foreach(name uplot three)
  file(READ ${modules}/${name}/LICENSE licence)
  string(APPEND licences "${name}:\n\n${licence}\n\n")
endforeach()
file(WRITE ${PARTS}/LICENSES "${licences}")
file(GLOB copied ${PARTS}/*)
file(TOUCH ${copied}) # npm's files are older than the lists
