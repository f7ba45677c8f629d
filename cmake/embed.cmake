# Writes a HEADER that defines the text of FILE as the constant NAME.
file(READ "${FILE}" text)
file(WRITE "${HEADER}" "inline constexpr char ${NAME}[] = R\"text(${text})text\";\n")
