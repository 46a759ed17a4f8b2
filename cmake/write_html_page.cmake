# Run by html_page: writes OUTPUT from SKELETON, STYLE, SCRIPTS, D3_SCRIPT and D3_LICENCE. The page
# runs and shows nothing but what its policy names by a hash.

# Reads a file that must not hold the texts given besides.
function(read_without variable file)
  file(READ ${file} text)
  foreach(word IN LISTS ARGN)
    string(FIND "${text}" "${word}" at)
    if(NOT at EQUAL -1)
      message(FATAL_ERROR "${file} holds ${word}, which would end where it stands in the page")
    endif()
  endforeach()
  set(${variable} "${text}" PARENT_SCOPE)
endfunction()

# The source of a policy that allows this text: its SHA-256 in base64.
function(policy_source variable text)
  set(alphabet "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/")
  string(SHA256 digits "${text}")
  string(APPEND digits "00")  # 256 bits are 43 characters but for two bits
  set(base64 "")
  foreach(at RANGE 0 63 3)
    string(SUBSTRING ${digits} ${at} 3 group)
    math(EXPR high "0x${group} >> 6")
    math(EXPR low "0x${group} & 63")
    string(SUBSTRING ${alphabet} ${high} 1 first)
    string(SUBSTRING ${alphabet} ${low} 1 second)
    string(APPEND base64 ${first}${second})
  endforeach()
  string(SUBSTRING ${base64} 0 43 base64)
  set(${variable} "'sha256-${base64}='" PARENT_SCOPE)
endfunction()

# Puts a text in place of a mark that stands once in `page`, between these two texts.
function(fill before mark after text)
  string(FIND "${page}" "${before}@${mark}@${after}" at)
  string(FIND "${page}" "@${mark}@" first)
  string(FIND "${page}" "@${mark}@" last REVERSE)
  if(at EQUAL -1 OR NOT first EQUAL last)
    message(FATAL_ERROR "${SKELETON} must hold ${before}@${mark}@${after} once")
  endif()
  string(REPLACE "@${mark}@" "${text}" filled "${page}")
  set(page "${filled}" PARENT_SCOPE)
endfunction()

set(script "\"use strict\";\n")
foreach(file IN LISTS SCRIPTS)
  read_without(text ${file} "</script" "<!--" "@DATA@" "@TITLE@")
  string(APPEND script "${text}")
endforeach()
read_without(style ${STYLE} "</style" "@DATA@" "@TITLE@")
read_without(licence ${D3_LICENCE} "</script" "<!--" "*/" "@DATA@" "@TITLE@")
read_without(d3 ${D3_SCRIPT} "</script" "<!--" "@DATA@" "@TITLE@" "@SCRIPT@")
set(d3 "/*\n${licence}*/\n${d3}")

policy_source(style_source "${style}")
policy_source(d3_source "${d3}")
policy_source(script_source "${script}")

file(READ ${SKELETON} page)
fill("" TITLE "" "@TITLE@")
fill("<script type=\"application/json\" id=\"kiv-report\">" DATA "</script>" "@DATA@")
fill("content=\"" POLICY "\""
     "default-src 'none'; script-src ${d3_source} ${script_source}; style-src ${style_source}; base-uri 'none'; form-action 'none'")
fill("<style>" STYLE "</style>" "${style}")
fill("<script>" SCRIPT "</script>" "${script}")
fill("<script>" D3 "</script>" "${d3}")
file(WRITE ${OUTPUT} "${page}")
